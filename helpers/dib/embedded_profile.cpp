#include "helpers/dib/embedded_profile.h"

#include <array>
#include <cstring>

#include "helpers/dib/bitmap_header.h"

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

// Whether a header of version 5 says that a profile is embedded.
bool SaysEmbedded(std::span<const uint8_t> info) {
    return info.size() >= kHeaderSize && NumberAt(info, 0) == kHeaderSize &&
           NumberAt(info, kSpaceAt) == kEmbedded;
}

}  // namespace

std::span<const uint8_t> EmbeddedProfile(std::span<const uint8_t> info) {
    if (!SaysEmbedded(info)) return {};
    const uint32_t at = NumberAt(info, kProfileAt), size = NumberAt(info, kProfileSizeAt);
    if (at < kHeaderSize || at > info.size() || size > info.size() - at) return {};
    return info.subspan(at, size);
}

std::vector<uint8_t> EmbeddedProfile(ByteSource& file, size_t most) {
    std::array<uint8_t, kFileHeaderSize + kHeaderSize> head{};
    if (file.ReadAt(0, head) != head.size() || head[0] != 'B' || head[1] != 'M') return {};
    const auto info = std::span<const uint8_t>(head).subspan(kFileHeaderSize);
    if (!SaysEmbedded(info)) return {};
    const uint32_t at = NumberAt(info, kProfileAt), size = NumberAt(info, kProfileSizeAt);
    if (at < kHeaderSize || size > most) return {};
    std::vector<uint8_t> profile(size);
    return file.ReadAt(uint64_t{kFileHeaderSize} + at, profile) == size ? profile
                                                                        : std::vector<uint8_t>();
}

std::vector<uint8_t> InfoWithProfile(std::span<const uint8_t> plainInfo,
                                     std::span<const uint8_t> profile) {
    std::vector<uint8_t> info(plainInfo.begin(), plainInfo.end());
    info.resize(kHeaderSize);
    const auto put = [&](size_t at, size_t number) {
        const auto value = static_cast<uint32_t>(number);
        std::memcpy(&info[at], &value, sizeof value);
    };
    put(0, kHeaderSize);
    put(kSpaceAt, kEmbedded);
    put(kProfileAt, kHeaderSize);
    put(kProfileSizeAt, profile.size());
    info.insert(info.end(), profile.begin(), profile.end());
    return info;
}

}  // namespace tessary::dib
