#include "helpers/dib/check_dib.h"
#include "tests/fuzz/unpack_all.h"

using namespace tessary::dib;

// The input is the size of the info block in two bytes, the info block, and the bits block.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    const std::span input(data + 2, size - 2);
    const size_t infoSize = std::min<size_t>(data[0] | data[1] << 8, input.size());
    // Blocks of their own, so that a read beyond either is seen.
    const std::vector<uint8_t> info(input.begin(), input.begin() + static_cast<long>(infoSize));
    const std::vector<uint8_t> bits(input.begin() + static_cast<long>(infoSize), input.end());
    const CheckedDib checked = CheckDib(info, bits);
    if (checked.Error() != DibError::kNone || checked.BitsSize() > fuzz::kMostBits) return 0;
    std::vector<uint8_t> newBits(checked.BitsSize());
    if (!checked.KeepsBits()) checked.WriteBits(newBits);
    fuzz::UnpackAll(checked.KeepsInfo() ? std::span<const uint8_t>(info) : checked.Info(),
                    checked.KeepsBits() ? bits : newBits);
    return 0;
}
