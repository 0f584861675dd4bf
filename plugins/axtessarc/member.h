// One file in an archive, as its directory describes it.
#pragma once

#include <cstdint>
#include <string>

namespace tessary::unpack {

struct Member {
    std::string name;         // folders included, separated by `/` or `\`
    bool nameIsUtf8 = false;  // otherwise in the code page of the system that packed it
    std::string method;       // how it is compressed, as users know it; never empty
    uint64_t compressedSize = 0;
    uint64_t size = 0;
    bool sizeIsKnown = true;  // otherwise `size` is a guess
    bool encrypted = false;
    int64_t time = 0;  // last written, seconds since 1970; 0 when the archive does not say
    uint32_t crc = 0;  // CRC-32 of the contents, 0 where the format stores none
};

}  // namespace tessary::unpack
