// EXIF data that a PNG file has as text: so they were kept before there was a chunk for them.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/dib/byte_source.h"

namespace tessary::metadata {

// The TIFF structure; empty when there is none before the picture data, or its text is damaged.
std::vector<uint8_t> FindRawExif(dib::ByteSource& source);

}  // namespace tessary::metadata
