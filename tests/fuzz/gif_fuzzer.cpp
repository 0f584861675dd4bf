#include "plugins/iftessgif/gif_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

// The input is a GIF file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    codec::fuzz::DecodeAll(gif::GifDecoder(), {data, size});
    codec::fuzz::DecodeFrames(gif::GifDecoder(), {data, size});
    return 0;
}
