// The central directory at the end of a ZIP archive, as the format's public document (APPNOTE)
// gives it. libarchive reads it too, but keeps names' encoding, packed sizes and check sums to
// itself, and takes no short way to a single member.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/axtarc/member.h"

namespace tessary::unpack {

// One record of the directory.
struct ZipRecord {
    std::span<const uint8_t> bytes;  // of the directory
    uint64_t headerOffset;           // of the member's own header, within the file
    uint16_t method;
    bool isFile;  // and not a folder or a link
    Member member;
};

struct ZipDirectory {
    std::vector<uint8_t> bytes;
    std::vector<ZipRecord> records;  // of a damaged directory, those before the damage
};

// Null when no directory is found or the medium fails.
std::optional<ZipDirectory> ReadZipDirectory(dib::ByteSource& source);

}  // namespace tessary::unpack
