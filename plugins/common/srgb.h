// Pictures in the colours that hosts expect: sRGB.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "helpers/color/color_transform.h"
#include "helpers/dib/bitmap_header.h"
#include "plugins/common/picture_target.h"

namespace tessary::codec {

// From a picture's profile to sRGB. Null when there is nothing to convert, be it that the profile
// is as good as sRGB or of no use for such pixels.
std::shared_ptr<const color::Transform> ToSrgb(const std::optional<color::Profile>& profile,
                                               color::Layout layout);

// The profile to hand on with a picture in place of converting it: of pixels of kBgr8 that a
// host converts in next to no time, by three curves and a matrix. Empty for all others.
std::vector<uint8_t> ProfileToHandOn(const PictureTarget& target,
                                     const std::optional<color::Profile>& profile);

// The colours of a grey picture of up to 8 bits, as GreyPalette has them without a profile.
std::vector<dib::PaletteEntry> SrgbGreyPalette(const std::optional<color::Profile>& profile,
                                               unsigned bitCount);

// The levels of grey in sRGB of samples of 8 bits, or of 16 if they are deep; empty where the
// profile is of no use for them.
std::vector<uint8_t> SrgbGreyLevels(const color::Profile& profile, bool areDeep);

// Converts the colours in their places.
void ConvertColors(const color::Transform& transform, std::span<dib::PaletteEntry> colors);

}  // namespace tessary::codec
