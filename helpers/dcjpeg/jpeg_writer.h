// Writes JPEG files (ITU-T T.81, in the JFIF form of T.871) with libjpeg-turbo.
#pragma once

#include "helpers/dib/byte_stream.h"
#include "helpers/dib/dib_view.h"
#include "helpers/files/byte_sink.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/save_options.h"
#include "helpers/saving/save_result.h"

namespace tessary::dcjpeg {

// From this quality on the colours keep their full resolution, below they have half of it in both
// directions, as is usual.
constexpr int kFullColorQuality = 90;

// Writes the file of a picture (jpeg_rows.h tells which ones become grey), with its resolution when
// it has one, and with the EXIF data and the profile of the extras. `progress` may be empty and
// must not throw. kTooLarge beyond 65500 pixels a side.
saving::SaveResult WriteJpeg(const dib::DibView& picture, const saving::JpegSaveOptions& options,
                             files::ByteSink& sink, const dib::Progress& progress,
                             const saving::FileExtras& extras = {});

}  // namespace tessary::dcjpeg
