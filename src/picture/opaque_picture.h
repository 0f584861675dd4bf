// Pictures for those who know no alpha: the screen, the clipboard's bitmap.
#pragma once

#include "helpers/dib/backdrop.h"
#include "picture/picture.h"

namespace tessary {

// A picture with alpha laid over the backdrop, with 24 bits per pixel and the bottom row first.
// Empty for all others, which are opaque as they are, and without memory.
Picture OpaquePicture(const dib::DibView& picture, dib::Backdrop backdrop = dib::Backdrop::kWhite);

}  // namespace tessary
