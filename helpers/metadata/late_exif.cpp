#include "helpers/metadata/late_exif.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <span>

namespace tessary::metadata {
namespace {

// More than EXIF data with a thumbnail have, and some texts.
constexpr uint64_t kTailSize = 192u << 10;

constexpr int kMostCandidates = 16;

constexpr std::array<uint8_t, 4> kName{'e', 'X', 'I', 'f'};
constexpr size_t kNumberSize = 4;

uint32_t Number(std::span<const uint8_t> bytes) {
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

std::vector<uint8_t> FindLateExif(dib::ByteSource& source) {
    const uint64_t size = source.Size();
    std::vector<uint8_t> tail(static_cast<size_t>(std::min(size, kTailSize)));
    if (source.ReadAt(size - tail.size(), tail) != tail.size()) return {};
    // Picture data may have such bytes, too, but not with a check sum that fits.
    const std::span<const uint8_t> bytes(tail);
    auto end = tail.end();
    for (int candidate = 0; candidate < kMostCandidates; ++candidate) {
        const auto found = std::find_end(tail.begin(), end, kName.begin(), kName.end());
        if (found == end) return {};
        end = found + kName.size() - 1;
        const auto at = static_cast<size_t>(found - tail.begin());
        if (at < kNumberSize) return {};
        const uint32_t length = Number(bytes.subspan(at - kNumberSize));
        const auto chunk = bytes.subspan(at);
        if (length > chunk.size() || chunk.size() - length < kName.size() + kNumberSize) continue;
        const auto named = chunk.first(kName.size() + length);
        if (crc32(0, named.data(), static_cast<uInt>(named.size())) !=
            Number(chunk.subspan(named.size()))) {
            continue;
        }
        const auto data = named.subspan(kName.size());
        return {data.begin(), data.end()};
    }
    return {};
}

}  // namespace tessary::metadata
