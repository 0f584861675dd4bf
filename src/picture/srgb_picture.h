// Pictures for those who know no colour but sRGB.
#pragma once

#include "picture/picture.h"

namespace tessary {

// The picture in sRGB: the same one where it has no profile, or one that is of no use or changes
// nothing; else a converted one without. Without memory for that it stays as it is.
Picture SrgbPicture(Picture picture);

// Whether a file that can hold the picture may hold its colours as they are, with its profile: it
// is opaque and has no table, and other programs will take the profile for that of such pixels.
bool IsSavableInOwnColors(const Picture& picture);

// The picture in sRGB but for one that is converted in next to no time whenever it is drawn: that
// keeps its colours and its profile.
Picture WithQuickProfile(Picture picture);

}  // namespace tessary
