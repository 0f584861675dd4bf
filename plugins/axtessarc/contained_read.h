// Reading a source on behalf of a C library, through which no exception may pass.
#pragma once

#include "helpers/dib/byte_source.h"

namespace tessary::unpack {

// As ByteSource::ReadAt; what it throws counts as an error of the medium.
inline std::optional<size_t> ReadContained(dib::ByteSource& source, uint64_t offset,
                                           std::span<uint8_t> into) noexcept {
    try {
        return source.ReadAt(offset, into);
    } catch (...) {
        return std::nullopt;
    }
}

}  // namespace tessary::unpack
