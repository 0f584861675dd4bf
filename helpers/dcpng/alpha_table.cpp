#include "helpers/dcpng/alpha_table.h"

#include <algorithm>
#include <cstring>

namespace tessary::dcpng {
namespace {

constexpr uint32_t kOpaque = 0xFF000000;

bool IsOpaque(uint32_t color) {
    return (color & kOpaque) == kOpaque;
}

}  // namespace

size_t AlphaTable::Slot(uint32_t color) const {
    size_t slot = color * 2654435761u >> 22;  // multiplicative hashing: the top 10 bits
    while (used_[slot] && keys_[slot] != color)
        slot = (slot + 1) % kSlots;
    return slot;
}

bool AlphaTable::Add(uint32_t color) {
    const size_t slot = Slot(color);
    if (used_[slot]) return true;
    if (count_ == colors_.size()) return false;
    used_[slot] = true;
    keys_[slot] = color;
    colors_[count_++] = color;
    return true;
}

void AlphaTable::Arrange() {
    const auto colors = std::span(colors_).first(count_);
    const auto opaque = std::stable_partition(colors.begin(), colors.end(),
                                              [](uint32_t c) { return !IsOpaque(c); });
    transparent_ = static_cast<size_t>(opaque - colors.begin());
    for (size_t i = 0; i < count_; ++i)
        indexes_[Slot(colors[i])] = static_cast<uint8_t>(i);
}

std::optional<AlphaTable> AlphaTable::Of(const dib::DibView& picture) {
    AlphaTable table;
    uint32_t last = 0;
    for (int32_t y = 0; y < picture.Height(); ++y) {
        const auto row = picture.Row(y);
        for (size_t x = 0; x < static_cast<size_t>(picture.Width()); ++x) {
            uint32_t color = 0;
            std::memcpy(&color, row.data() + x * 4, sizeof(color));
            if (color == last && table.count_ != 0) continue;
            last = color;
            if (!table.Add(color)) return std::nullopt;
        }
    }
    table.Arrange();
    return table;
}

}  // namespace tessary::dcpng
