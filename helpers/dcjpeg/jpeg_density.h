// Resolutions in JPEG files.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>

#include "helpers/dib/bitmap_header.h"

namespace tessary::dcjpeg {

// The density fields of a JFIF header.
struct JpegDensity {
    uint8_t unit;  // 1: pixels per inch, 2: per centimetre
    uint16_t x;
    uint16_t y;
};

// The density that comes nearest to the header's resolution: both units know whole numbers only.
// Empty when the resolution is unknown or beyond what the fields can hold.
inline std::optional<JpegDensity> DensityOf(const dib::BitmapInfoHeader& header) {
    struct Candidate {
        uint8_t unit;
        double metres;  // length of the unit
        double Of(int32_t perMetre) const { return std::round(perMetre * metres); }
        bool Keeps(int32_t perMetre) const {
            return std::round(Of(perMetre) / metres) == static_cast<double>(perMetre);
        }
    };
    constexpr Candidate kInch{1, 0.0254};
    constexpr Candidate kCentimetre{2, 0.01};
    const auto keepsBoth = [&](const Candidate& unit) {
        return unit.Keeps(header.xPelsPerMeter) && unit.Keeps(header.yPelsPerMeter);
    };
    const Candidate& unit = !keepsBoth(kInch) && keepsBoth(kCentimetre) ? kCentimetre : kInch;
    const double x = unit.Of(header.xPelsPerMeter);
    const double y = unit.Of(header.yPelsPerMeter);
    if (x < 1 || y < 1 || x > 0xFFFF || y > 0xFFFF) return std::nullopt;
    return JpegDensity{unit.unit, static_cast<uint16_t>(x), static_cast<uint16_t>(y)};
}

}  // namespace tessary::dcjpeg
