#include "plugins/common/inks.h"

namespace tessary::codec {

void InksToColors(const uint8_t* inks, uint8_t* out, size_t pixels, bool areInverted) {
    const uint8_t flip = areInverted ? 0 : 0xFF;
    for (size_t i = 0; i < pixels; ++i, inks += 4, out += 3) {
        const unsigned black = inks[3] ^ flip;
        const uint8_t channels[3] = {inks[0], inks[1], inks[2]};
        for (int channel = 0; channel < 3; ++channel) {
            out[2 - channel] =
                static_cast<uint8_t>(((channels[channel] ^ flip) * black + 127) / 255);
        }
    }
}

}  // namespace tessary::codec
