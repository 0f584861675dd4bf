// Which archive format a file is of, by its first bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tessary::unpack {

enum class Format {
    kNone,
    kZip,
    kSevenZip,
    kRar,
    kRar5,
    kCab,
    kLzh,
    kTar,
    // One compressed stream: a tar archive or a single file.
    kGzip,
    kBzip2,
    kXz,
};

// The format whose signature stands at the start of `header`; tar has none but a check sum.
Format DetectFormat(std::span<const uint8_t> header);

// Whether to offer the file of this name and header to the user as an archive. Compressed streams
// only if their names say that they are to be unpacked, or a tar archive is seen inside: others
// belong to the programs that compress their own files.
bool IsArchive(std::span<const uint8_t> header, std::string_view fileName);

// Whether `name` is longer than `ending`, which is in lower case, and ends with it in either case.
bool EndsWith(std::string_view name, std::string_view ending);

}  // namespace tessary::unpack
