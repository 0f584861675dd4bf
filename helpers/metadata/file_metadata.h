// What a picture file says of its picture.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "helpers/metadata/metadata_field.h"

namespace tessary::metadata {

// Reads the headers of JPEG, PNG and TIFF files; of others, and of what is damaged, it knows
// nothing, or what stands before the damage. Of a TIFF file only the first 64 KB are looked at.
struct FileMetadata {
    Fields fields{};
    std::vector<uint8_t> exif{};  // a TIFF structure; empty: there is none
};
FileMetadata ReadFileMetadata(dib::ByteSource& source);

// What the format's library finds. Texts become fields; EXIF data and profiles are left to others.
struct Carried {
    Fields fields{};
    std::vector<uint8_t> exif{};
    std::vector<uint8_t> profile{};
};
Carried ReadJpegMetadata(dib::ByteSource& source);
Carried ReadPngMetadata(dib::ByteSource& source);

}  // namespace tessary::metadata
