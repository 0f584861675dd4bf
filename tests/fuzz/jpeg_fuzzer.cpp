#include "plugins/iftessjpeg/jpeg_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

// The input is a JPEG file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    codec::fuzz::DecodeAll(jpeg::JpegDecoder(), {data, size});
    return 0;
}
