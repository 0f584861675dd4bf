// Numbers as files store them, in either byte order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessary::misc {

constexpr uint16_t Little16(const uint8_t* at) {
    return static_cast<uint16_t>(at[0] | at[1] << 8);
}
constexpr uint32_t Little32(const uint8_t* at) {
    return Little16(at) | uint32_t{Little16(at + 2)} << 16;
}
constexpr uint16_t Big16(const uint8_t* at) {
    return static_cast<uint16_t>(at[0] << 8 | at[1]);
}
constexpr uint32_t Big32(const uint8_t* at) {
    return uint32_t{Big16(at)} << 16 | Big16(at + 2);
}
constexpr uint64_t Big64(const uint8_t* at) {
    return uint64_t{Big32(at)} << 32 | Big32(at + 4);
}

// `value` of 0 to `most` (above 0) as one of 0 to 255, rounded.
constexpr uint8_t Scaled(uint32_t value, uint32_t most) {
    return static_cast<uint8_t>((value * 255 + most / 2) / most);
}

}  // namespace tessary::misc
