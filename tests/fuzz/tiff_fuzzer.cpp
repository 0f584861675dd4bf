#include "plugins/iftesstiff/tiff_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

// The input is a TIFF file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    codec::fuzz::DecodeAll(tiff::TiffDecoder(), {data, size});
    codec::fuzz::DecodeFrames(tiff::TiffDecoder(), {data, size});
    return 0;
}
