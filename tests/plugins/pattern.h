// The pixels of `.tst` pictures.
#pragma once

#include <cstdint>

namespace tessary::test {

struct Colour {
    uint8_t blue, green, red;
    bool operator==(const Colour&) const = default;
};

// The pixel in column x, row y, counted from the top left, of a picture without a palette (before
// it is reduced to 5 or 6 bits in 16-bit pictures).
constexpr Colour PatternPixel(uint32_t x, uint32_t y) {
    return {static_cast<uint8_t>(x * 7), static_cast<uint8_t>(y * 11),
            static_cast<uint8_t>(x * 3 + y * 5)};
}

// The same in a palette picture: an index into the palette.
constexpr uint32_t PatternIndex(uint32_t x, uint32_t y, uint32_t depth) {
    return (x + y) & ((1U << depth) - 1);
}

// Entry `index` of every palette.
constexpr Colour PatternColour(uint32_t index) {
    return {static_cast<uint8_t>(index * 3 + 1), static_cast<uint8_t>(index * 5 + 2),
            static_cast<uint8_t>(index * 7 + 4)};
}

}  // namespace tessary::test
