#include "plugins/common/srgb.h"

#include <algorithm>

#include "plugins/common/palette.h"

namespace tessary::codec {
namespace {

const color::Profile& Srgb() {
    static const color::Profile profile = color::Profile::Srgb();
    return profile;
}

}  // namespace

std::shared_ptr<const color::Transform> ToSrgb(const std::optional<color::Profile>& profile,
                                               color::Layout layout) {
    if (!profile || AreAlike(*profile, Srgb())) return nullptr;
    return color::Transform::Make(*profile, Srgb(), layout);
}

std::vector<dib::PaletteEntry> SrgbGreyPalette(const std::optional<color::Profile>& profile,
                                               unsigned bitCount) {
    std::vector<dib::PaletteEntry> palette = GreyPalette(bitCount);
    const auto colors = profile ? GreyColors(*profile, Srgb()) : std::nullopt;
    if (!colors) return palette;
    for (dib::PaletteEntry& entry : palette) {
        const color::Color& color = (*colors)[entry.green];
        entry = {color[0], color[1], color[2], 0};
    }
    return palette;
}

std::vector<uint8_t> SrgbGreyLevels(const color::Profile& profile, bool areDeep) {
    return GreyLevels(profile, Srgb(), areDeep);
}

void ConvertColors(const color::Transform& transform, std::span<dib::PaletteEntry> colors) {
    for (dib::PaletteEntry& entry : colors) {
        color::Color color{entry.blue, entry.green, entry.red};
        transform.Convert(color.data(), color.data(), 1);
        entry = {color[0], color[1], color[2], 0};
    }
}

}  // namespace tessary::codec
