// Whether the fourth bytes of 32-bit pixels are an alpha channel.
#pragma once

#include "helpers/dib/dib_view.h"

namespace tessary::dcpng {

// Nothing in a plain picture says what its fourth bytes are. Drawing functions and decoders leave
// 0, 255, both or anything there, and a file that takes those for alpha has holes which nobody has
// seen before: the viewer never shows the fourth bytes. An alpha channel that is dropped leaves
// what the viewer shows. So in doubt there is none. It is one when the fourth bytes differ, and
// - no colour byte is above its pixel's fourth byte (the colours are multiplied by alpha; among
//   them pictures that are either opaque or transparent and black), or
// - there are opaque, transparent and half transparent pixels, and all transparent ones have the
//   same colour, which is what remains there when nothing was drawn.
// `picture` must have 32 bits per pixel.
bool UsesAlpha(const dib::DibView& picture);

}  // namespace tessary::dcpng
