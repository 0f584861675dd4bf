// The pixels of `.tst` pictures.
#pragma once

#include <cstdint>

namespace tessary::test {

struct Colour {
    uint8_t blue, green, red;
    bool operator==(const Colour&) const = default;
};

// The pixel in column x, row y, counted from the top left, of a picture without a palette.
constexpr Colour PatternPixel(uint32_t x, uint32_t y) {
    return {static_cast<uint8_t>(x * 7), static_cast<uint8_t>(y * 11),
            static_cast<uint8_t>(x * 3 + y * 5)};
}

}  // namespace tessary::test
