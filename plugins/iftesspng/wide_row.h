// Rows of 2-bit pixels, a depth that Windows does not know.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessary::png {

// Both halves of a byte of two 4-bit pixels, from a pixel pair of 2 bits each.
inline uint8_t SpreadPair(unsigned pair) {
    return static_cast<uint8_t>((pair & 12) << 2 | (pair & 3));
}

// Makes a row of 2-bit pixels one of 4-bit pixels, in place.
inline void WidenRow(uint8_t* data, size_t narrowBytes) {
    for (size_t i = narrowBytes; i-- > 0;) {
        const unsigned four = data[i];
        data[2 * i + 1] = SpreadPair(four & 15);
        data[2 * i] = SpreadPair(four >> 4);
    }
}

}  // namespace tessary::png
