#include "plugins/iftesswic/pixel_rows.h"

#include <cstddef>

namespace tessary::wic {
namespace {

unsigned PackedPixel(const uint8_t* row, uint32_t x, unsigned bitCount) {
    if (bitCount == 16) return row[size_t{x} * 2 + 1];
    const uint32_t perByte = 8 / bitCount;
    const unsigned shift = (perByte - 1 - x % perByte) * bitCount;
    return row[x / perByte] >> shift & ((1u << bitCount) - 1);
}

}  // namespace

void UnpackRow(const uint8_t* in, uint8_t* out, uint32_t width, unsigned bitCount) {
    for (uint32_t x = 0; x < width; ++x) {
        out[x] = static_cast<uint8_t>(PackedPixel(in, x, bitCount));
    }
}

}  // namespace tessary::wic
