#include "helpers/dcpng/used_alpha.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace tessary::dcpng {
namespace {

constexpr uint8_t kOpaque = 255;
constexpr uint32_t kNoColor = std::numeric_limits<uint32_t>::max();

// What was seen so far. All in one pass and without branches: large pictures are looked through
// before a single row is written.
struct Seen {
    uint32_t brighter = 0;  // not 0: a colour byte above the fourth
    uint32_t opaque = 0;    // not 0: there are such pixels
    uint32_t half = 0;
    uint32_t lowest = kNoColor;  // of the colours of transparent pixels
    uint32_t highest = 0;

    void Add(std::span<const uint8_t> row, size_t width) {
        for (size_t x = 0; x < width; ++x) {
            const uint8_t* pixel = row.data() + x * 4;
            const uint32_t alpha = pixel[3];
            const uint32_t color = pixel[0] | static_cast<uint32_t>(pixel[1]) << 8 |
                                   static_cast<uint32_t>(pixel[2]) << 16;
            const bool transparent = alpha == 0;
            brighter |= static_cast<uint32_t>(std::max({pixel[0], pixel[1], pixel[2]}) > alpha);
            opaque |= static_cast<uint32_t>(alpha == kOpaque);
            half |= static_cast<uint32_t>(alpha - 1 < kOpaque - 1u);
            lowest = std::min(lowest, transparent ? color : kNoColor);
            highest = std::max(highest, transparent ? color : 0);
        }
    }
    bool HasTransparent() const { return lowest != kNoColor; }
    bool HasOneEmptyColor() const { return HasTransparent() && lowest == highest; }
};

}  // namespace

bool UsesAlpha(const dib::DibView& picture) {
    const auto width = static_cast<size_t>(picture.Width());
    const uint8_t first = picture.Row(0)[3];
    uint8_t difference = 0;
    Seen seen;
    for (int32_t y = 0; y < picture.Height(); ++y) {
        const auto row = picture.Row(y);
        seen.Add(row, width);
        for (size_t x = 0; x < width; ++x)
            difference |= row[x * 4 + 3] ^ first;
        const bool mixesColors = seen.HasTransparent() && !seen.HasOneEmptyColor();
        if (seen.brighter != 0 && mixesColors) return false;
    }
    if (difference == 0) return false;
    return seen.brighter == 0 || (seen.opaque != 0 && seen.half != 0 && seen.HasOneEmptyColor());
}

}  // namespace tessary::dcpng
