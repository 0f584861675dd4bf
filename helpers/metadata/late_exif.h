// EXIF data that some programs write behind the picture data of a PNG file.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/dib/byte_source.h"

namespace tessary::metadata {

// What the last eXIf chunk holds near the file's end; empty where there is none. Going there from
// chunk to chunk would take thousands of reads.
std::vector<uint8_t> FindLateExif(dib::ByteSource& source);

}  // namespace tessary::metadata
