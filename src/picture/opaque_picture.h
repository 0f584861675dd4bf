// Pictures for those who know no alpha: the screen, the clipboard's bitmap.
#pragma once

#include "picture/modMemory.h"

namespace tessary {

// A plain pair with alpha laid over white, with 24 bits per pixel and the bottom row first. Empty
// for all other pairs, which are opaque as they are, and without memory.
OwnedPicture OpaquePicture(const PicturePair& picture);

}  // namespace tessary
