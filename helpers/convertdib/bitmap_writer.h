// Writes bitmap files. Layout: BITMAPFILEHEADER, BITMAPINFO and BITMAPCOREINFO of the Windows GDI
// documents.
#pragma once

#include "helpers/dib/dib_view.h"
#include "helpers/files/byte_sink.h"
#include "helpers/saving/save_options.h"
#include "helpers/saving/save_result.h"

namespace tessary::convertdib {

// Writes the file of a picture, at the picture's own depth and with its bottom row first. Bits that
// belong to no pixel become 0.
//
// The header of OS/2 1.x is used up to 32767 x 32767 pixels, and for 1, 4, 8 and 24 bits; it holds
// no resolution and no compression; saveRLE is left aside with it. Its colour table is always
// complete; the one of a Windows bitmap goes as far as the pixels do. Alpha gets a header of
// version 4 with its mask. kTooLarge beyond 4 GB.
saving::SaveResult WriteBitmap(const dib::DibView& picture, const saving::BmpSaveOptions& options,
                               files::ByteSink& sink);

}  // namespace tessary::convertdib
