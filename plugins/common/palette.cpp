#include "plugins/common/palette.h"

#include <cstddef>

namespace tessary::codec {

std::vector<dib::PaletteEntry> GreyPalette(unsigned bitCount) {
    std::vector<dib::PaletteEntry> levels(bitCount > 8 ? 0 : size_t{1} << bitCount);
    for (size_t i = 0; i < levels.size(); ++i) {
        const auto level = static_cast<uint8_t>(i * 255 / (levels.size() - 1));
        levels[i] = {level, level, level, 0};
    }
    return levels;
}

dib::PaletteEntry BlendColor(dib::PaletteEntry color, uint8_t alpha, dib::PaletteEntry background) {
    return {BlendSample(color.blue, alpha, background.blue),
            BlendSample(color.green, alpha, background.green),
            BlendSample(color.red, alpha, background.red), 0};
}

}  // namespace tessary::codec
