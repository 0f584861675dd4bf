// Plain pictures of every kind to save, and a place in memory to save them to.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <random>

#include "helpers/files/byte_sink.h"
#include "tests/helpers/dib/test_bitmap.h"

namespace tessary::saving::test {

using dib::PixelFormat;
using dib::test::Bytes;
using Palette = std::vector<dib::PaletteEntry>;

inline constexpr PixelFormat kAllFormats[] = {
    PixelFormat::kIndexed1, PixelFormat::kIndexed4, PixelFormat::kIndexed8, PixelFormat::kRgb555,
    PixelFormat::kRgb565,   PixelFormat::kBgr24,    PixelFormat::kBgrx32,   PixelFormat::kBgra32};

// Different colours, none of them grey, up to 256; nothing for a depth without a table.
inline Palette Colors(PixelFormat format, size_t most = 256) {
    const size_t bits = dib::BitsPerPixel(format);
    Palette palette(bits > 8 ? 0 : std::min(most, size_t{1} << bits));
    for (size_t i = 0; i < palette.size(); ++i) {
        palette[i] = {static_cast<uint8_t>(i), static_cast<uint8_t>(i * 3),
                      static_cast<uint8_t>(i + 100), 0x5A};
    }
    return palette;
}

// All levels of grey that the depth can hold, the brightest first.
inline Palette Greys(PixelFormat format) {
    Palette palette = Colors(format);
    for (size_t i = 0; i < palette.size(); ++i) {
        const auto level = static_cast<uint8_t>(255 - i * 255 / (palette.size() - 1));
        palette[i] = {level, level, level, 0};
    }
    return palette;
}

// A pair in blocks without slack. Rows are runs of bytes between noise; padding is noise, too.
struct SamplePicture {
    SamplePicture(PixelFormat format, int32_t width, int32_t height, const Palette& palette,
                  uint32_t seed = 1) {
        const uint16_t depth = dib::BitsPerPixel(format);
        const bool is565 = format == PixelFormat::kRgb565;
        const bool hasAlpha = format == PixelFormat::kBgra32;
        const auto colors = static_cast<uint32_t>(palette.size());
        const uint32_t compression = is565 ? 3 : hasAlpha ? 6 : 0;
        const dib::BitmapInfoHeader header{40, width, height, 1,      depth, compression,
                                           0,  11811, 5906,   colors, 7};
        dib::test::TestBitmap::Append(info, &header, sizeof(header));
        if (is565) dib::test::TestBitmap::Append(info, dib::kMasks565, sizeof(dib::kMasks565));
        if (hasAlpha) dib::test::TestBitmap::Append(info, dib::kMasksAlpha, 16);
        dib::test::TestBitmap::Append(info, palette.data(), palette.size() * 4);
        info.shrink_to_fit();

        const uint64_t stride = dib::RowStride(static_cast<uint64_t>(width), depth);
        bits = Bytes(static_cast<size_t>(stride) * static_cast<size_t>(std::abs(height)));
        std::minstd_rand random(seed);
        for (size_t at = 0; at < bits.size();) {
            const size_t run = random() % 4 == 0 ? random() % 300 + 1 : 1;
            const size_t count = std::min(run, bits.size() - at);
            std::fill_n(&bits[at], count, static_cast<uint8_t>(random() >> 8));
            at += count;
        }
    }
    dib::DibView View() const { return dib::DibView::Of(info, bits).value(); }

    Bytes info;
    Bytes bits;
};

// Pictures of all formats and widths to 67, as bottom-up and as top-down ones. The table of a
// picture is paletteOf(format, width).
void ForEachPicture(const auto& paletteOf, const auto& test) {
    for (const PixelFormat format : kAllFormats) {
        for (int32_t width = 1; width <= 67; ++width) {
            const int32_t height = width % 11 == 0 ? 33 : 1 + width % 9;
            for (const int32_t stored : {height, -height}) {
                SCOPED_TRACE(testing::Message()
                             << static_cast<int>(format) << ' ' << width << ' ' << stored);
                test(SamplePicture(format, width, stored, paletteOf(format, width)));
            }
        }
    }
}

// The pixels as blue, green, red, alpha bytes, from the top row on.
inline Bytes Bgra(const dib::DibView& view) {
    const dib::RowReader reader(view);
    const size_t rowBytes = static_cast<size_t>(view.Width()) * 4;
    Bytes pixels(rowBytes * static_cast<size_t>(view.Height()));
    for (int32_t y = 0; y < view.Height(); ++y) {
        reader.RowBgra(view.Row(y), std::span(pixels).subspan(static_cast<size_t>(y) * rowBytes));
    }
    return pixels;
}

// Keeps what is written, and refuses from a certain call on.
struct KeptBytes final : files::ByteSink {
    explicit KeptBytes(int refusedCall = std::numeric_limits<int>::max()) : refused(refusedCall) {}
    bool Write(std::span<const uint8_t> more) noexcept override {
        if (calls == refused) return false;
        ++calls;
        bytes.insert(bytes.end(), more.begin(), more.end());
        return true;
    }
    int refused;
    int calls = 0;
    Bytes bytes;
};

}  // namespace tessary::saving::test
