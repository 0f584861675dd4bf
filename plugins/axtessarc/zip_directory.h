// The central directory at the end of a ZIP archive, as the format's public document (APPNOTE)
// gives it. libarchive reads it too, but keeps names' encoding, packed sizes and check sums to
// itself, and takes no short way to a single member.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/axtessarc/member.h"

namespace tessary::unpack {

// One record of the directory.
struct ZipRecord {
    std::span<const uint8_t> bytes;  // of the directory
    uint64_t headerOffset;           // of the member's own header, within the file
    uint16_t method;
    uint16_t disk;  // on which the member is
    bool isFile;    // and not a folder or a link
    Member member;
};

struct ZipDirectory {
    std::vector<uint8_t> bytes;
    std::vector<ZipRecord> records;  // of a damaged directory, those before the damage
    uint16_t disk = 0;               // of an archive cut into several files, the number of this one
    bool isWhole = true;
};

// Whether an archive cut into several files ends with this one, as its end record says.
bool IsLastZipVolume(dib::ByteSource& source);

// Null when no directory is found or the medium fails.
std::optional<ZipDirectory> ReadZipDirectory(dib::ByteSource& source);

}  // namespace tessary::unpack
