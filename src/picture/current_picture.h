// The one picture that the main window shows.
#pragma once

#include "picture/modMemory.h"

namespace tessary {

// The current picture; still owned here.
const PicturePair& CurrentPicture();

// Frees the current picture's blocks and takes over the new pair; an empty pair leaves no current
// picture.
void SetCurrentPicture(PicturePair picture);

}  // namespace tessary
