// What hinders the reading of an archive as a whole, by its first bytes and its name.
#pragma once

#include <string_view>

#include "helpers/dib/byte_source.h"
#include "plugins/axtessarc/archive_format.h"

namespace tessary::unpack {

struct ArchiveMarks {
    bool isVolume = false;    // one of a set, of which others are needed
    bool mayBePiece = false;  // its name looks like that of one, and it has no mark
    bool directoryIsEncrypted = false;
};

// `fileName` is without folders; it may be empty. What cannot be read has no marks.
ArchiveMarks ReadMarks(dib::ByteSource& source, Format format, std::string_view fileName);

// Whether the name is that of one piece of an archive cut into numbered ones, which has no other
// mark from the second piece on: `name.7z.002`.
bool IsPieceName(std::string_view fileName);

}  // namespace tessary::unpack
