// A source in memory, for libraries that want all of it at once.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/common/result.h"

namespace tessary::codec {

// Reads `size` bytes from `offset` on, or fewer where the source ends. kOutOfMemory where there is
// no room for them, kReadError when the medium fails.
Result ReadPart(dib::ByteSource& source, uint64_t offset, uint64_t size,
                std::vector<uint8_t>& bytes);

// The same with all of it.
inline Result ReadWhole(dib::ByteSource& source, std::vector<uint8_t>& bytes) {
    return ReadPart(source, 0, source.Size(), bytes);
}

}  // namespace tessary::codec
