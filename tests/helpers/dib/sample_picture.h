// Plain pictures of every kind, without meaning.
#pragma once

#include <random>

#include "tests/helpers/dib/test_bitmap.h"

namespace tessary::dib::test {

using Palette = std::vector<uint32_t>;  // as TestBitmap has its colours

inline constexpr PixelFormat kAllFormats[] = {
    PixelFormat::kIndexed1, PixelFormat::kIndexed4, PixelFormat::kIndexed8, PixelFormat::kRgb555,
    PixelFormat::kRgb565,   PixelFormat::kBgr24,    PixelFormat::kBgrx32,   PixelFormat::kBgra32};

// Different colours, none of them grey, up to 256; nothing for a depth without a table.
inline Palette Colors(PixelFormat format, size_t most = 256) {
    const size_t bits = BitsPerPixel(format);
    Palette palette(bits > 8 ? 0 : std::min(most, size_t{1} << bits));
    for (uint32_t i = 0; i < palette.size(); ++i)
        palette[i] = 0x5A000000 | (i + 100) % 256 << 16 | i * 3 % 256 << 8 | i;
    return palette;
}

// A pair in blocks without slack. Rows are runs of bytes between noise; padding is noise, too.
struct SamplePicture {
    SamplePicture(PixelFormat format, int32_t width, int32_t height, const Palette& palette,
                  uint32_t seed = 1) {
        const uint16_t depth = BitsPerPixel(format);
        TestBitmap bitmap{width, height, depth, {}, palette};
        if (format == PixelFormat::kRgb565) {
            bitmap.compression = 3;
            bitmap.masks.assign(kMasks565, kMasks565 + 3);
        } else if (format == PixelFormat::kBgra32) {
            bitmap.compression = 6;
            bitmap.masks.assign(kMasksAlpha, kMasksAlpha + 4);
        }
        info = bitmap.Info();
        const uint64_t stride = RowStride(static_cast<uint64_t>(width), depth);
        bits = Bytes(static_cast<size_t>(stride) * static_cast<size_t>(std::abs(height)));
        std::minstd_rand random(seed);
        for (size_t at = 0; at < bits.size();) {
            const size_t run = random() % 4 == 0 ? random() % 300 + 1 : 1;
            const size_t count = std::min(run, bits.size() - at);
            std::fill_n(&bits[at], count, static_cast<uint8_t>(random() >> 8));
            at += count;
        }
    }
    // Of many colours.
    SamplePicture(PixelFormat format, int32_t width, int32_t height)
        : SamplePicture(format, width, height, Colors(format)) {}

    DibView View() const { return DibView::Of(info, bits).value(); }

    Bytes info;
    Bytes bits;
};

}  // namespace tessary::dib::test
