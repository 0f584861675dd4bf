// What stands before the pixels of a Photoshop file. Format: Adobe Photoshop File Formats
// Specification.
#pragma once

#include <optional>
#include <vector>

#include "helpers/color/color_profile.h"
#include "helpers/dib/byte_source.h"

namespace tessary::misc {

enum class PsdMode : uint16_t {
    kBitmap = 0,
    kGrey = 1,
    kIndexed = 2,
    kRgb = 3,
    kCmyk = 4,
    kMultichannel = 7,
    kDuotone = 8,
    kLab = 9,
};

struct PsdFile {
    bool isLarge = false;  // PSB: longer lengths
    uint16_t channels = 0;
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t depth = 0;  // bits of a sample: 1, 8, 16, 32 (floating-point)
    PsdMode mode = PsdMode::kRgb;
    std::vector<uint8_t> colorTable = {};  // of kIndexed: all reds, all greens, all blues
    std::optional<uint16_t> clearIndex = {};
    bool hasComposite = true;    // the picture of all layers
    bool isTransparent = false;  // the composite: its first extra channel is alpha
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    std::optional<color::Profile> profile = {};
    uint64_t pixelOffset = 0;  // of the composite, beginning with its compression

    // Samples with colours of a pixel.
    unsigned Colors() const;
    // Bitmaps and pictures with a table have none.
    bool HasAlpha() const {
        return isTransparent && channels > Colors() && depth != 1 && mode != PsdMode::kIndexed;
    }
    uint64_t RowBytes() const { return (uint64_t{width} * depth + 7) / 8; }
};

// Nothing where the head makes no sense.
std::optional<PsdFile> ReadPsd(dib::ByteSource& source);

bool IsPsd(std::span<const uint8_t> header);

}  // namespace tessary::misc
