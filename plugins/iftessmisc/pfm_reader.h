// PFM: floating-point samples behind a head of Netpbm's kind.
#pragma once

#include <memory>

#include "plugins/iftessmisc/netpbm_header.h"
#include "plugins/iftessmisc/picture_reader.h"

namespace tessary::misc {

// `header` is that of a file of floating-point samples, which count as linear light.
std::unique_ptr<PictureReader> MakePfmReader(dib::ByteSource& source, const NetpbmHeader& header);

}  // namespace tessary::misc
