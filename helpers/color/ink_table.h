// The quick way from four inks to RGB: the colours of a grid of inks, and what lies between them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace tessary::color {

class InkTable {
  public:
    // What inks mean: four of each point, from 0 to 1, become blue, green and red from 0 to 1, or
    // beyond where the target has no such colour. Called with a row of points at a time.
    using Meaning = std::function<void(const float* inks, float* colors, size_t points)>;

    // `isInverted`: a byte of 255 is no ink. Throws std::bad_alloc.
    InkTable(const Meaning& meaning, bool isInverted);

    // Pixels of four bytes of ink become 8-bit blue, green, red; not in place.
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const;

  private:
    // Blue, green, red; signed, as what is out of reach may be cut off behind the mixing.
    using Point = std::array<int16_t, 4>;
    // A color as the points have it, from what `Meaning` tells of it.
    using Rule = float (*)(float color);

    void TakePoints(const std::vector<float>& colors, Rule rule);
    // How far the points are from what is meant, over inks from everywhere.
    uint64_t ErrorOver(const std::vector<uint8_t>& inks, const std::vector<float>& exact) const;

    // Where a level of an ink stands: the grid's point below it, and how far above that.
    struct Place {
        uint32_t point = 0;  // its part of the index
        uint32_t above = 0;  // of kWhole, in the upper half; the way to the next point in the lower
    };

    std::array<std::array<Place, 256>, 4> places_;
    std::vector<Point> points_;
};

}  // namespace tessary::color
