#include "helpers/kernel/resize.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/helpers/kernel/noise_picture.h"
#include "tests/helpers/kernel/reference_resize.h"

namespace tessary::kernel {
namespace {

std::vector<uint8_t> Resized(const dib::DibView& source, int32_t width, int32_t height) {
    const uint64_t stride = dib::RowStride(static_cast<uint64_t>(width), 24);
    std::vector<uint8_t> rows(static_cast<size_t>(stride) * static_cast<size_t>(height), 0xEE);
    Resize(source, width, height, ResizeFilter::kAutomatic, rows);
    return rows;
}

// Each byte has to be the reference's value, rounded; 0.52 leaves room for values near a half.
void ExpectLikeReference(const dib::DibView& source, int32_t width, int32_t height) {
    const std::vector<uint8_t> rows = Resized(source, width, height);
    const std::vector<double> reference = ReferenceResize(source, width, height);
    const size_t used = static_cast<size_t>(width) * 3;
    const size_t stride = rows.size() / static_cast<size_t>(height);
    double worst = 0;
    for (size_t y = 0; y < static_cast<size_t>(height); ++y) {
        const uint8_t* row = &rows[(static_cast<size_t>(height) - 1 - y) * stride];
        for (size_t i = 0; i < used; ++i) {
            const double wanted = std::clamp(reference[y * used + i], 0.0, 255.0);
            worst = std::max(worst, std::fabs(row[i] - wanted));
        }
        EXPECT_TRUE(std::all_of(row + used, row + stride, [](uint8_t byte) { return byte == 0; }));
    }
    EXPECT_LE(worst, 0.52) << source.Width() << 'x' << source.Height() << ", "
                           << source.Header().bitCount << " bits, to " << width << 'x' << height;
}

TEST(Resize, MixesEveryDepthAndSizeLikeTheReference) {
    // Widths around the sizes of whole registers, in both row orders, shrunk, enlarged and both.
    for (const uint16_t depth : {1, 4, 8, 16, 24, 32}) {
        for (int32_t width = 1; width <= 35; ++width) {
            const int32_t height = width % 2 == 0 ? 36 - width : width - 36;
            const NoisePicture picture(width, height, depth);
            ExpectLikeReference(picture.View(), 7, 5);
            ExpectLikeReference(picture.View(), 19, 11);
            ExpectLikeReference(picture.View(), 36, 40);
        }
    }
}

TEST(Resize, TakesExtremeShapes) {
    ExpectLikeReference(NoisePicture(1, 30000, 8).View(), 20, 16);
    ExpectLikeReference(NoisePicture(30000, 1, 24).View(), 16, 20);
    ExpectLikeReference(NoisePicture(1, 1, 1).View(), 1280, 1024);
    ExpectLikeReference(NoisePicture(3, 2, 32).View(), 1, 3000);
    // More rows under the filter than are unpacked at a time: a white stripe on black tells which
    // ones were mixed.
    NoisePicture picture(3000, 2000, 8);
    std::fill_n(&picture.info[dib::kInfoHeaderSize], 3, uint8_t{255});
    std::fill_n(&picture.info[dib::kInfoHeaderSize + 4], 3, uint8_t{0});
    std::fill(picture.bits.begin(), picture.bits.end(), uint8_t{1});
    std::fill_n(picture.bits.begin(), 3000 * 200, uint8_t{0});
    ExpectLikeReference(picture.View(), 3, 1);
}

TEST(Resize, SharesLargePicturesAmongThreads) {
    ExpectLikeReference(NoisePicture(1501, 1000, 24).View(), 433, 289);
    ExpectLikeReference(NoisePicture(1500, -1001, 32).View(), 640, 480);
}

TEST(Resize, LeavesFlatPicturesFlat) {
    for (const uint8_t value : {1, 127, 255}) {
        for (const int32_t side : {1, 7, 450, 5000}) {
            NoisePicture picture(side, 5001 - side, 24);
            std::fill(picture.bits.begin(), picture.bits.end(), value);
            const std::vector<uint8_t> rows = Resized(picture.View(), 80, 60);
            EXPECT_EQ(std::count(rows.begin(), rows.end(), value), std::ssize(rows)) << side;
        }
    }
}

TEST(Resize, RefusesRowsThatNoMemoryCanHold) {
    std::vector<uint8_t> bits(dib::RowStride(1u << 27, 1));
    NoisePicture picture(1, 1, 1);
    const int32_t width = 1 << 27;
    std::memcpy(&picture.info[offsetof(dib::BitmapInfoHeader, width)], &width, sizeof(width));
    std::vector<uint8_t> rows(4);
    const dib::DibView view = dib::DibView::Of(picture.info, bits).value();
    EXPECT_THROW(Resize(view, 1, 1, ResizeFilter::kAutomatic, rows), std::length_error);
}

}  // namespace
}  // namespace tessary::kernel
