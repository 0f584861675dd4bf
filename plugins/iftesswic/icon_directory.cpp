#include "plugins/iftesswic/icon_directory.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

namespace tessary::wic {
namespace {

// ICONDIR: reserved, type (1 icon, 2 cursor), count; then 16 bytes per picture: width, height,
// colours, reserved, planes, bit count, size, offset.
constexpr size_t kDirectorySize = 6;
constexpr size_t kEntrySize = 16;
constexpr uint64_t kTypeOffset = 2;
constexpr uint8_t kIconType = 1;

uint32_t Little(std::span<const uint8_t> bytes, size_t at, size_t count) {
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value |= uint32_t{bytes[at + i]} << (8 * i);
    return value;
}

// What makes an entry the better one to show, the most important first.
using Rank = std::tuple<uint32_t, uint32_t, uint32_t>;

Rank RankOf(std::span<const uint8_t> entry, bool isIcon) {
    const auto side = [](uint8_t stored) { return stored == 0 ? 256u : stored; };
    const uint32_t area = side(entry[0]) * side(entry[1]);
    return {area, isIcon ? Little(entry, 6, 2) : 0, Little(entry, 8, 4)};
}

}  // namespace

bool IsIconDirectory(std::span<const uint8_t> header) {
    if (header.size() < kDirectorySize + kEntrySize) return false;
    const uint32_t count = Little(header, 4, 2);
    const auto entry = header.subspan(kDirectorySize, kEntrySize);
    return count != 0 && Little(entry, 8, 4) != 0 &&
           Little(entry, 12, 4) >= kDirectorySize + count * kEntrySize;
}

uint32_t LargestIcon(dib::ByteSource& file) {
    std::array<uint8_t, kDirectorySize> start{};
    if (file.ReadAt(0, start).value_or(0) != start.size()) return 0;
    const bool isIcon = start[kTypeOffset] == kIconType;
    std::vector<uint8_t> entries(Little(start, 4, 2) * kEntrySize);
    const size_t count = file.ReadAt(kDirectorySize, entries).value_or(0) / kEntrySize;
    Rank best{};
    uint32_t bestIndex = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const auto entry = std::span(entries).subspan(i * kEntrySize, kEntrySize);
        if (const Rank rank = RankOf(entry, isIcon); rank > best) {
            best = rank;
            bestIndex = i;
        }
    }
    return bestIndex;
}

std::optional<size_t> CursorAsIcon::ReadAt(uint64_t offset, std::span<uint8_t> out) {
    const auto count = file_.ReadAt(offset, out);
    if (count && kTypeOffset >= offset && kTypeOffset - offset < *count) {
        out[static_cast<size_t>(kTypeOffset - offset)] = kIconType;
    }
    return count;
}

}  // namespace tessary::wic
