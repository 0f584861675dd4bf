// Rows with an alpha channel laid over a plain colour.
#pragma once

#include <cstddef>
#include <cstdint>

#include "helpers/dib/bitmap_header.h"

namespace tessary::codec {

// Grey and alpha, a byte each, become a byte of grey, over the background's green. In place if
// wanted.
void FlattenGreyRow(const uint8_t* in, uint8_t* out, size_t pixels, dib::PaletteEntry background);

// 32-bit BGRA becomes 24-bit BGR. In place if wanted.
void FlattenColorRow(const uint8_t* in, uint8_t* out, size_t pixels, dib::PaletteEntry background);

}  // namespace tessary::codec
