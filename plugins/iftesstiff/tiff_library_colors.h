// Kinds of pictures that libtiff itself makes colours of: YCbCr with samples shared by several
// pixels, luminances with a logarithm.
#pragma once

#include "plugins/common/oriented_rows.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"
#include "plugins/iftesstiff/tiff_file.h"
#include "plugins/iftesstiff/tiff_form.h"

namespace tessary::tiff {

// Reads all rows, of kBgr8. kBrokenData where the library cannot read the first ones; `isSound`
// tells whether it could read all.
codec::Result ReadLibraryColors(const TiffFile& file, const TiffForm& form,
                                codec::OrientedRows& rows, codec::Progress& progress,
                                bool& isSound);

}  // namespace tessary::tiff
