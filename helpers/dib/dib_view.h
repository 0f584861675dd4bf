// Reading access to a picture in the plain form, the only form that the program hands on. What the
// bytes of a plain pair mean (row order, colour table, masks) is decided here and nowhere else.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "helpers/dib/bitmap_header.h"

namespace tessary::dib {

// How the pixels of a plain picture are stored.
enum class PixelFormat : uint8_t {
    kIndexed1,  // palette indexes, leftmost pixel in the highest bits
    kIndexed4,
    kIndexed8,
    kRgb555,  // 16 bits, red highest, top bit unused
    kRgb565,  // 16 bits, red highest
    kBgr24,   // blue, green, red bytes
    kBgrx32,  // blue, green, red bytes and a fourth one without meaning, which may be anything
    kBgra32,  // blue, green, red bytes, not multiplied by the alpha byte that follows
};

constexpr uint16_t BitsPerPixel(PixelFormat format) {
    switch (format) {
        case PixelFormat::kIndexed1:
            return 1;
        case PixelFormat::kIndexed4:
            return 4;
        case PixelFormat::kIndexed8:
            return 8;
        case PixelFormat::kRgb555:
        case PixelFormat::kRgb565:
            return 16;
        case PixelFormat::kBgr24:
            return 24;
        case PixelFormat::kBgrx32:
        case PixelFormat::kBgra32:
            return 32;
    }
    return 0;
}

// Masks of kRgb565 as they stand behind the header, in the order red, green, blue.
constexpr uint32_t kMasks565[3] = {0xF800, 0x07E0, 0x001F};
// Those of kBgra32, with alpha last.
constexpr uint32_t kMasksAlpha[4] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFF000000};

// A plain pair without owning it: valid as long as both blocks stay where they are.
//
// Plain means: a header of 40 bytes, planes 1, width above 0, height not 0 (negative: top row
// first), 1/4/8/16/24/32 bits per pixel; compression kCompressionRgb, kCompressionBitFields for 16
// bits with exactly the masks of kMasks565, or kCompressionAlphaBitFields for 32 bits with those of
// kMasksAlpha: only a mask makes the fourth byte mean alpha. No more colours used than the depth
// can index (0 for depths above 8); an info block that holds the colour table its header announces;
// a bits block of at least stride x height bytes. Palette indexes beyond the colour table may
// occur; they are black.
class DibView {
  public:
    // Null when the pair is not plain (CheckDib makes it so).
    static std::optional<DibView> Of(std::span<const uint8_t> info, std::span<const uint8_t> bits);

    const BitmapInfoHeader& Header() const { return header_; }
    PixelFormat Format() const { return format_; }
    int32_t Width() const { return header_.width; }
    int32_t Height() const { return header_.height < 0 ? -header_.height : header_.height; }
    bool IsTopDown() const { return header_.height < 0; }
    // Bytes from one row to the next, a multiple of 4.
    size_t Stride() const { return stride_; }

    // The colour table; empty for depths above 8, and possibly shorter than the depth can index.
    std::span<const PaletteEntry> Palette() const { return palette_; }
    // Exactly the Stride() x Height() bytes of the pixel rows, in stored order.
    std::span<const uint8_t> Bits() const { return bits_; }
    // The Stride() bytes of row y, counted from the top of the picture; 0 <= y < Height().
    std::span<const uint8_t> Row(int32_t y) const {
        const int32_t stored = IsTopDown() ? y : Height() - 1 - y;
        return bits_.subspan(static_cast<size_t>(stored) * stride_, stride_);
    }

  private:
    DibView() = default;

    BitmapInfoHeader header_{};
    PixelFormat format_ = PixelFormat::kBgr24;
    size_t stride_ = 0;
    std::span<const PaletteEntry> palette_;
    std::span<const uint8_t> bits_;
};

}  // namespace tessary::dib
