// Pictures to save, and a place in memory to save them to.
#pragma once

#include <gtest/gtest.h>

#include <limits>

#include "helpers/files/byte_sink.h"
#include "tests/helpers/dib/sample_picture.h"

namespace tessary::saving::test {

using dib::PixelFormat;
using dib::test::Bytes;
using dib::test::Colors;
using dib::test::kAllFormats;
using dib::test::Palette;
using dib::test::SamplePicture;

// All levels of grey that the depth can hold, the brightest first.
inline Palette Greys(PixelFormat format) {
    Palette palette = Colors(format);
    for (size_t i = 0; i < palette.size(); ++i)
        palette[i] = static_cast<uint32_t>(255 - i * 255 / (palette.size() - 1)) * 0x10101;
    return palette;
}

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
