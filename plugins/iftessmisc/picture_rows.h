// The way of a reader's rows into the target.
#pragma once

#include "plugins/common/picture_target.h"
#include "plugins/iftessmisc/picture_reader.h"

namespace tessary::misc {

// As the picture is shown to hosts that take no alpha.
codec::PictureForm FormOf(const Outline& outline);

// Creates the picture in the target and fills it. Transparent pixels are laid over white where the
// target takes no alpha. `isDamaged` receives whether pixels are missing or wrong; kBrokenData
// where there is none at all. `sourceSize` as of CreatePicture.
codec::Result PutPicture(PictureReader& reader, codec::PictureTarget& target, uint64_t sourceSize,
                         codec::Progress& progress, bool& isDamaged);

}  // namespace tessary::misc
