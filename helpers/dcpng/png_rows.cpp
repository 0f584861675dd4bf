#include "helpers/dcpng/png_rows.h"

#include <algorithm>
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
        kind_ = PngKind::kRgba;
    }
    bitsPerPixel_ = static_cast<uint32_t>(bitDepth_) * Channels(kind_);
    rowBytes_ =
        static_cast<size_t>(dib::RowBytes(static_cast<uint64_t>(picture.Width()), bitsPerPixel_));
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
            return PackIndexes(row, pixels);
        case PngKind::kRgb:
            reader_.Row(row, pixels);
            return SwapRedAndBlue(pixels, 3);
        case PngKind::kRgba:
            reader_.RowBgra(row, pixels);
            return SwapRedAndBlue(pixels, 4);
    }
}

}  // namespace tessary::dcpng
