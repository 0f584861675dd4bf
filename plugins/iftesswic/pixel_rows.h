// Rows of a frame as the picture stores them. Portable: knows bits and palettes, not the system's
// decoders.
#pragma once

#include <cstdint>
#include <span>

#include "helpers/dib/bitmap_header.h"

namespace tessary::wic {

// The pixels of a packed row (1, 2, 4 or 8 bits each), one byte each; of 16-bit ones the
// high byte.
void UnpackRow(const uint8_t* in, uint8_t* out, uint32_t width, unsigned bitCount);

// Colours of the pixels of a packed row, 24-bit BGR. `palette` has 1 << bitCount entries.
void ColorRow(const uint8_t* in, uint8_t* out, uint32_t width, unsigned bitCount,
              std::span<const dib::PaletteEntry> palette);

}  // namespace tessary::wic
