#include "plugins/common/flatten_rows.h"

#include <cstring>

#include "plugins/common/palette.h"

namespace tessary::codec {

void FlattenGreyRow(const uint8_t* in, uint8_t* out, size_t pixels, dib::PaletteEntry background) {
    for (size_t i = 0; i < pixels; ++i, in += 2) {
        out[i] = BlendSample(in[0], in[1], background.green);
    }
}

void FlattenColorRow(const uint8_t* in, uint8_t* out, size_t pixels, dib::PaletteEntry background) {
    for (size_t i = 0; i < pixels; ++i, in += 4, out += 3) {
        const uint8_t alpha = in[3];
        if (alpha == 0xFF) {
            std::memmove(out, in, 3);
            continue;
        }
        out[0] = BlendSample(in[0], alpha, background.blue);
        out[1] = BlendSample(in[1], alpha, background.green);
        out[2] = BlendSample(in[2], alpha, background.red);
    }
}

}  // namespace tessary::codec
