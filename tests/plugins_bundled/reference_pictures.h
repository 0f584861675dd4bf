// Pictures as others than the code under test read them.
#pragma once

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "helpers/dib/bitmap_file.h"
#include "tests/plugins_bundled/decoded_picture.h"

namespace tessary::codec::test {

inline Colors ReadBitmap(const Bytes& bytes) {
    dib::MemorySource source(bytes);
    dib::BitmapFile file(source);
    EXPECT_EQ(file.Open(), dib::DibError::kNone);
    Bytes bits(file.BitsSize());
    EXPECT_EQ(file.ReadBits(bits, {}), dib::DibError::kNone);
    return Colors(dib::DibView::Of(file.Info(), bits).value());
}

// libpng's own short way: 8-bit blue, green, red, alpha.
inline Bytes ReadPng(const Bytes& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size()));
    image.format = PNG_FORMAT_BGRA;
    image.flags = PNG_IMAGE_FLAG_16BIT_sRGB;
    Bytes pixels(PNG_IMAGE_SIZE(image));
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
    EXPECT_EQ(image.warning_or_error, 0u) << image.message;
    return pixels;
}

// The largest difference to pixels with alpha over grey of level `behind`; without one only the
// opaque pixels count.
inline int WorstDifference(const Bytes& actual, const Bytes& wanted, std::optional<int> behind) {
    if (actual.size() != wanted.size()) return 256;
    int worst = 0;
    for (size_t i = 0; i < wanted.size(); ++i) {
        const int alpha = wanted[i | 3];
        if (i % 4 == 3 || (!behind && alpha != 255)) continue;
        const int level = (wanted[i] * alpha + behind.value_or(0) * (255 - alpha)) / 255;
        worst = std::max(worst, std::abs(actual[i] - level));
    }
    return worst;
}

}  // namespace tessary::codec::test
