// Colour tables and transparency: the Susie interface knows no alpha channel, so what is
// transparent is laid over a plain colour.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/dib/bitmap_header.h"

namespace tessary::codec {

// Transparent pixels show this unless the file names a colour of its own.
constexpr dib::PaletteEntry kWhite{0xFF, 0xFF, 0xFF, 0};

// The levels from black to white of a grey picture of up to 8 bits; empty for deeper ones, which
// have no table.
std::vector<dib::PaletteEntry> GreyPalette(unsigned bitCount);

// One sample of `alpha` (0 clear, 255 opaque) over `background`, rounded.
constexpr uint8_t BlendSample(uint8_t sample, uint8_t alpha, uint8_t background) {
    return static_cast<uint8_t>((sample * alpha + background * (255 - alpha) + 127) / 255);
}

dib::PaletteEntry BlendColor(dib::PaletteEntry color, uint8_t alpha, dib::PaletteEntry background);

}  // namespace tessary::codec
