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
using Palette = std::vector<uint32_t>;  // 0xRRGGBB

inline constexpr PixelFormat kAllFormats[] = {
    PixelFormat::kIndexed1, PixelFormat::kIndexed4, PixelFormat::kIndexed8, PixelFormat::kRgb555,
    PixelFormat::kRgb565,   PixelFormat::kBgr24,    PixelFormat::kBgrx32};

// Up to 256 different colours, none of them grey, with a stray byte each; nothing for a depth
// without a table.
inline Palette Colors(PixelFormat format, size_t most = 256) {
    const size_t bits = dib::BitsPerPixel(format);
    Palette palette(bits > 8 ? 0 : std::min(most, size_t{1} << bits));
    for (uint32_t i = 0; i < palette.size(); ++i)
        palette[i] = 0x5A000064 + i * 0x010200 + i;
    return palette;
}

// All levels of grey that the depth can hold, the brightest first.
inline Palette Greys(PixelFormat format) {
    Palette palette = Colors(format);
    const auto count = static_cast<uint32_t>(palette.size());
    for (uint32_t i = 0; i < count; ++i)
        palette[i] = (255 - i * 255 / (count - 1)) * 0x010101;
    return palette;
}

// A pair in blocks without slack: in turns short runs, noise, and one long run; in the padding too.
struct SamplePicture {
    SamplePicture(PixelFormat format, int32_t width, int32_t height, const Palette& palette,
                  uint32_t seed = 1) {
        dib::test::TestBitmap bitmap{width, height, dib::BitsPerPixel(format), {}, palette};
        if (format == PixelFormat::kRgb565) {
            bitmap.compression = 3;
            bitmap.masks = {0xF800, 0x7E0, 0x1F};
        }
        info = bitmap.Info();
        const int32_t density[] = {11811, 5906};
        std::memcpy(&info[24], density, sizeof(density));
        const uint64_t stride = dib::RowStride(static_cast<uint64_t>(width), bitmap.bitCount);
        bits = Bytes(static_cast<size_t>(stride) * static_cast<size_t>(std::abs(height)));
        std::minstd_rand random(seed);
        uint8_t value = 0;
        for (size_t at = 0; at < bits.size(); ++at) {
            const size_t kind = at / 300 % 3;
            if (kind == 1 || (kind == 0 && random() % 2 == 0))
                value = static_cast<uint8_t>(random() >> 8);
            bits[at] = value;
        }
    }
    dib::DibView View() const { return dib::DibView::Of(info, bits).value(); }

    Bytes info;
    Bytes bits;
};

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
