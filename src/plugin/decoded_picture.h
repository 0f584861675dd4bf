// What a plug-in hands out as a picture is checked before anything else sees it.
#pragma once

#include "picture/modMemory.h"

namespace tessary {

// Takes a pair over from a plug-in that reported success. A picture in the plain form
// (helpers/dib/dib_view.h) comes back in the very blocks it came in; one that can be put right
// comes back in new blocks. Empty, with everything freed, when a block is missing or the pair is no
// picture.
OwnedPicture PlainPicture(PicturePair fromPlugin);

}  // namespace tessary
