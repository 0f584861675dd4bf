// Pictures whose decoder hands over rows of colours, with or without an alpha channel: their form,
// and the way of their rows into the target.
#pragma once

#include <optional>

#include "helpers/color/color_profile.h"
#include "helpers/color/color_transform.h"
#include "plugins/common/oriented_rows.h"
#include "plugins/common/picture_target.h"
#include "plugins/common/result.h"

namespace tessary::codec {

// What a decoder knows of its picture before it has the first pixel.
struct ColorPicture {
    uint32_t width = 0;   // as stored
    uint32_t height = 0;  // the same
    // All but kRgb16; alpha is not multiplied into the colours.
    color::Layout layout = color::Layout::kBgr8;
    uint16_t orientation = kUprightOrientation;
    int32_t xPelsPerMeter = 0;  // as stored; 0: unknown
    int32_t yPelsPerMeter = 0;
    // Of RGB, or of inks where the layout is. Empty: sRGB, or plain inks.
    std::optional<color::Profile> profile{};

    bool HasAlpha() const {
        return layout == color::Layout::kBgra8 || layout == color::Layout::kBgra16BigEndian;
    }
};

// As it is shown to hosts that take no alpha.
PictureForm FormOf(const ColorPicture& picture);

// Creates the picture in the target, as CreatePicture does, and sets `rows` up, which take the
// stored rows, of pixels as the layout has them. Transparent pixels are laid over white where the
// target takes no alpha.
Result CreateColorPicture(PictureTarget& target, const ColorPicture& picture, uint64_t sourceSize,
                          std::optional<OrientedRows>& rows);

}  // namespace tessary::codec
