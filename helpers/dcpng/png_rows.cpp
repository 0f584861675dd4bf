#include "helpers/dcpng/png_rows.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tessary::dcpng {
namespace {

constexpr uint32_t Channels(PngKind kind) {
    return kind == PngKind::kRgba ? 4 : kind == PngKind::kRgb ? 3 : 1;
}

void SwapRedAndBlue(std::span<uint8_t> pixels, size_t channels) {
    for (size_t i = 0; i + 2 < pixels.size(); i += channels)
        std::swap(pixels[i], pixels[i + 2]);
}

}  // namespace

PngRows::PngRows(const dib::DibView& picture)
    : picture_(picture), reader_(picture), palette_(saving::TrimPalette(picture)) {
    const int depth = dib::BitsPerPixel(picture.Format());
    if (depth <= 8) {
        bitDepth_ = depth;
        kind_ = palette_.IsGrey() && MapToGrey() ? PngKind::kGrey : PngKind::kPalette;
    } else if (picture.Format() == dib::PixelFormat::kBgra32) {
        table_ = AlphaTable::Of(picture);
        kind_ = table_ ? PngKind::kPalette : PngKind::kRgba;
        if (table_) TakeTable();
    }
    bitsPerPixel_ = static_cast<uint32_t>(bitDepth_) * Channels(kind_);
    rowBytes_ =
        static_cast<size_t>(dib::RowBytes(static_cast<uint64_t>(picture.Width()), bitsPerPixel_));
}

void PngRows::TakeTable() {
    palette_.size = table_->Colors().size();
    std::ranges::transform(table_->Colors(), palette_.entries.begin(), [](uint32_t color) {
        return dib::PaletteEntry{static_cast<uint8_t>(color), static_cast<uint8_t>(color >> 8),
                                 static_cast<uint8_t>(color >> 16), 0};
    });
    bitDepth_ = palette_.size <= 2 ? 1 : palette_.size <= 16 ? 4 : 8;
}

std::vector<uint8_t> PngRows::Alphas() const {
    std::vector<uint8_t> alphas;
    if (!table_) return alphas;
    for (const uint32_t color : table_->Colors().first(table_->Transparent()))
        alphas.push_back(static_cast<uint8_t>(color >> 24));
    return alphas;
}

void PngRows::PackColors(std::span<const uint8_t> row, std::span<uint8_t> out) const {
    std::ranges::fill(out, uint8_t{0});
    const auto depth = static_cast<size_t>(bitDepth_);
    for (size_t x = 0; x < static_cast<size_t>(picture_.Width()); ++x) {
        uint32_t color = 0;
        std::memcpy(&color, row.data() + x * 4, sizeof(color));
        const size_t bit = x * depth;
        out[bit / 8] |= static_cast<uint8_t>(table_->IndexOf(color) << (8 - depth - bit % 8));
    }
}

bool PngRows::MapToGrey() {
    const unsigned mask = (1u << bitDepth_) - 1;
    const unsigned step = 255 / mask;  // between two levels
    for (const dib::PaletteEntry& entry : palette_.Entries()) {
        if (entry.red % step != 0) return false;
    }
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned grey = 0;
        for (int shift = 0; shift < 8; shift += bitDepth_) {
            grey |= palette_.entries[byte >> shift & mask].red / step << shift;
        }
        greyBytes_[byte] = static_cast<uint8_t>(grey);
    }
    return true;
}

void PngRows::PackIndexes(std::span<const uint8_t> row, std::span<uint8_t> out) const {
    const auto indexes = row.first(rowBytes_);
    if (kind_ == PngKind::kGrey) {
        std::ranges::transform(indexes, out.begin(),
                               [&](uint8_t byte) { return greyBytes_[byte]; });
    } else {
        std::ranges::copy(indexes, out.begin());
    }
    // Bits behind the last pixel are nobody's: the same picture gives the same file.
    const size_t spare =
        rowBytes_ * 8 - static_cast<size_t>(picture_.Width()) * static_cast<size_t>(bitDepth_);
    out[rowBytes_ - 1] &= static_cast<uint8_t>(0xFF << spare);
}

void PngRows::Pack(int32_t y, std::span<uint8_t> out) const {
    const auto row = picture_.Row(y);
    const auto pixels = out.first(rowBytes_);
    switch (kind_) {
        case PngKind::kGrey:
        case PngKind::kPalette:
            return table_ ? PackColors(row, pixels) : PackIndexes(row, pixels);
        case PngKind::kRgb:
            reader_.Row(row, pixels);
            return SwapRedAndBlue(pixels, 3);
        case PngKind::kRgba:
            reader_.RowBgra(row, pixels);
            return SwapRedAndBlue(pixels, 4);
    }
}

}  // namespace tessary::dcpng
