// Pictures for those who know no colour but sRGB.
#pragma once

#include "picture/picture.h"

namespace tessary {

// The picture in sRGB: the same one where it has no profile, or one that is of no use or changes
// nothing; else a converted one without. Without memory for that it stays as it is.
Picture SrgbPicture(Picture picture);

// The same but for a picture that is converted in next to no time whenever it is drawn: that keeps
// its colours and its profile.
Picture WithQuickProfile(Picture picture);

}  // namespace tessary
