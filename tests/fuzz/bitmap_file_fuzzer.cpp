#include "helpers/dib/bitmap_file.h"
#include "tests/fuzz/unpack_all.h"

using namespace tessary::dib;

// The input is a bitmap file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemorySource source({data, size});
    BitmapFile file(source);
    if (file.Open() != DibError::kNone || file.BitsSize() > fuzz::kMostBits) return 0;
    const std::vector<uint8_t> info(file.Info().begin(), file.Info().end());
    std::vector<uint8_t> bits(file.BitsSize());
    if (file.ReadBits(bits, {}) != DibError::kNone) std::abort();
    fuzz::UnpackAll(info, bits);
    return 0;
}
