#include "plugins/iftesswebp/webp_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

// The input is a WebP file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    codec::fuzz::DecodeAll(webp::WebpDecoder(), {data, size});
    codec::fuzz::DecodeFrames(webp::WebpDecoder(), {data, size});
    return 0;
}
