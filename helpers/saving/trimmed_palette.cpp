#include "helpers/saving/trimmed_palette.h"

#include <algorithm>

namespace tessary::saving {
namespace {

// A plain loop, of which the compiler makes sixteen comparisons at once.
uint8_t HighestByte(std::span<const uint8_t> bytes) {
    uint8_t highest = 0;
    for (const uint8_t byte : bytes)
        highest = std::max(highest, byte);
    return highest;
}

uint8_t HighestNibble(std::span<const uint8_t> row, size_t width) {
    uint8_t highest = 0;
    for (size_t i = 0; i < width / 2; ++i) {
        highest = std::max(
            {highest, static_cast<uint8_t>(row[i] >> 4), static_cast<uint8_t>(row[i] & 0x0F)});
    }
    return width % 2 == 0 ? highest : std::max(highest, static_cast<uint8_t>(row[width / 2] >> 4));
}

uint8_t HighestIndex(const dib::DibView& picture) {
    const auto width = static_cast<size_t>(picture.Width());
    const bool isByte = picture.Format() == dib::PixelFormat::kIndexed8;
    const uint8_t most = isByte ? 255 : 15;
    uint8_t highest = 0;
    for (int32_t y = 0; y < picture.Height() && highest < most; ++y) {
        const auto row = picture.Row(y);
        highest =
            std::max(highest, isByte ? HighestByte(row.first(width)) : HighestNibble(row, width));
    }
    return highest;
}

size_t UsedEntries(const dib::DibView& picture) {
    switch (picture.Format()) {
        case dib::PixelFormat::kIndexed1:
            return 2;
        case dib::PixelFormat::kIndexed4:
        case dib::PixelFormat::kIndexed8:
            return HighestIndex(picture) + size_t{1};
        default:
            return 0;
    }
}

}  // namespace

bool TrimmedPalette::IsGrey() const {
    return size != 0 && std::ranges::all_of(Entries(), [](const dib::PaletteEntry& entry) {
               return entry.red == entry.green && entry.green == entry.blue;
           });
}

TrimmedPalette TrimPalette(const dib::DibView& picture) {
    TrimmedPalette palette;
    palette.size = UsedEntries(picture);
    const auto table = picture.Palette();
    const size_t known = std::min(palette.size, table.size());
    for (size_t i = 0; i < known; ++i) {
        palette.entries[i] = {table[i].blue, table[i].green, table[i].red, 0};
    }
    return palette;
}

}  // namespace tessary::saving
