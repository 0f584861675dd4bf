// Numbers as the archive formats store them: low byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessary::unpack {

// The number in `count` bytes from `offset` on, which must lie within `bytes`.
inline uint64_t ReadNumber(std::span<const uint8_t> bytes, size_t offset, size_t count) {
    uint64_t value = 0;
    for (size_t i = count; i-- > 0;)
        value = value << 8 | bytes[offset + i];
    return value;
}

inline uint16_t Read16(std::span<const uint8_t> bytes, size_t offset) {
    return static_cast<uint16_t>(ReadNumber(bytes, offset, 2));
}

inline uint32_t Read32(std::span<const uint8_t> bytes, size_t offset) {
    return static_cast<uint32_t>(ReadNumber(bytes, offset, 4));
}

inline uint64_t Read64(std::span<const uint8_t> bytes, size_t offset) {
    return ReadNumber(bytes, offset, 8);
}

inline void AppendNumber(std::vector<uint8_t>& bytes, uint64_t value, size_t count) {
    for (size_t i = 0; i < count; ++i, value >>= 8)
        bytes.push_back(static_cast<uint8_t>(value));
}

}  // namespace tessary::unpack
