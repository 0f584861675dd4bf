#include "helpers/dib/embedded_profile.h"

#include <cstring>

namespace tessary::dib {
namespace {

// Of the public document of BITMAPV5HEADER.
constexpr uint32_t kHeaderSize = 124;
constexpr size_t kSpaceAt = 56, kProfileAt = 112, kProfileSizeAt = 116;
constexpr uint32_t kEmbedded = 0x4D424544;  // "MBED"

uint32_t NumberAt(std::span<const uint8_t> info, size_t at) {
    uint32_t number;
    std::memcpy(&number, &info[at], sizeof number);
    return number;
}

}  // namespace

std::span<const uint8_t> EmbeddedProfile(std::span<const uint8_t> info) {
    if (info.size() < kHeaderSize || NumberAt(info, 0) != kHeaderSize ||
        NumberAt(info, kSpaceAt) != kEmbedded) {
        return {};
    }
    const uint32_t at = NumberAt(info, kProfileAt), size = NumberAt(info, kProfileSizeAt);
    if (at < kHeaderSize || at > info.size() || size > info.size() - at) return {};
    return info.subspan(at, size);
}

}  // namespace tessary::dib
