#include "plugins/iftessmisc/misc_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

// The input is a file of any of the small formats.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    codec::fuzz::DecodeAll(misc::MiscDecoder(), {data, size});
    codec::fuzz::DecodeFrames(misc::MiscDecoder(), {data, size});
    return 0;
}
