// Writes PNG files (ISO/IEC 15948) with libpng, libdeflate and all processors.
#pragma once

#include "helpers/dib/byte_stream.h"
#include "helpers/dib/dib_view.h"
#include "helpers/files/byte_sink.h"
#include "helpers/saving/file_extras.h"
#include "helpers/saving/save_options.h"
#include "helpers/saving/save_result.h"

namespace tessary::dcpng {

// Writes the file of a picture, pixel for pixel (png_rows.h tells in which form), with its
// resolution when it has one, and with the EXIF data and the profile of the extras. `progress` may
// be empty; it is called on the calling thread. All threads have ended on return, also when it
// throws. kTooLarge when a row needs more than 1 GB.
saving::SaveResult WritePng(const dib::DibView& picture, const saving::PngSaveOptions& options,
                            files::ByteSink& sink, const dib::Progress& progress,
                            const saving::FileExtras& extras = {});

}  // namespace tessary::dcpng
