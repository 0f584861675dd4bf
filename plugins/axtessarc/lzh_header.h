// One header of an LZH archive.
#pragma once

#include <cstdint>
#include <optional>

#include "helpers/dib/byte_source.h"
#include "plugins/axtessarc/member.h"

namespace tessary::unpack {

struct LzhHeader {
    uint64_t size;  // bytes of the header; the data follows
    bool isFile;    // and not a folder or a link
    uint16_t crc;   // CRC-16 of the contents
    Member member;
};

// The header at `offset`; null at the end of the archive and where there is no sound one.
std::optional<LzhHeader> ReadLzhHeader(dib::ByteSource& source, uint64_t offset);

}  // namespace tessary::unpack
