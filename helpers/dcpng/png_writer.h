// Writes PNG files (ISO/IEC 15948) with libpng.
#pragma once

#include "helpers/dib/byte_stream.h"
#include "helpers/dib/dib_view.h"
#include "helpers/files/byte_sink.h"
#include "helpers/saving/save_options.h"
#include "helpers/saving/save_result.h"

namespace tessary::dcpng {

// Writes the file of a picture, pixel for pixel (png_rows.h tells in which form), with its
// resolution when it has one. `progress` may be empty.
saving::SaveResult WritePng(const dib::DibView& picture, const saving::PngSaveOptions& options,
                            files::ByteSink& sink, const dib::Progress& progress);

}  // namespace tessary::dcpng
