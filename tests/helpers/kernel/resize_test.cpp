#include "helpers/kernel/resize.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "helpers/kernel/column_pass.h"
#include "tests/helpers/kernel/noise_picture.h"
#include "tests/helpers/kernel/reference_resize.h"

namespace tessary::kernel {
namespace {

std::vector<uint8_t> Resized(const dib::DibView& source, int32_t width, int32_t height,
                             ResizeFilter filter = ResizeFilter::kAutomatic) {
    const uint64_t stride = dib::RowStride(static_cast<uint64_t>(width), 24);
    std::vector<uint8_t> rows(static_cast<size_t>(stride) * static_cast<size_t>(height), 0xEE);
    Resize(source, width, height, filter, rows);
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

constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};

TEST(Resize, MixesEveryDepthAndSizeLikeTheReference) {
    // Widths around the sizes of whole registers, in both row orders, shrunk, enlarged and both.
    for (const uint16_t depth : kDepths) {
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
    for (const uint16_t depth : {1, 8, 24, 32}) {
        ExpectLikeReference(NoisePicture(1, 30000, depth).View(), 20, 16);
        ExpectLikeReference(NoisePicture(30000, 1, depth).View(), 16, 20);
        ExpectLikeReference(NoisePicture(1, 1, depth).View(), 1280, 1024);
        ExpectLikeReference(NoisePicture(3, 2, depth).View(), 1, 3000);
        ExpectLikeReference(NoisePicture(40, 30, depth).View(), 3000, 1);
    }
    // More rows under the filter than are unpacked at a time: a white stripe on black tells which
    // ones were mixed.
    for (const int32_t height : {2000, -2000}) {
        NoisePicture picture(3000, height, 8);
        std::fill_n(&picture.info[dib::kInfoHeaderSize], 3, uint8_t{255});
        std::fill_n(&picture.info[dib::kInfoHeaderSize + 4], 3, uint8_t{0});
        std::fill(picture.bits.begin(), picture.bits.end(), uint8_t{1});
        std::fill_n(picture.bits.begin(), 3000 * 200, uint8_t{0});
        ExpectLikeReference(picture.View(), 3, 1);
        ExpectLikeReference(picture.View(), 2, 3);
    }
}

TEST(Resize, SharesLargePicturesAmongThreads) {
    ExpectLikeReference(NoisePicture(1501, 1000, 24).View(), 433, 289);
    ExpectLikeReference(NoisePicture(1500, -1001, 32).View(), 640, 480);
    ExpectLikeReference(NoisePicture(2000, 1500, 8).View(), 999, 13);
    ExpectLikeReference(NoisePicture(200, 150, 4).View(), 1601, 1200);
}

TEST(Resize, LeavesFlatPicturesFlat) {
    for (const uint8_t value : {0, 1, 127, 254, 255}) {
        for (const int32_t side : {1, 2, 7, 64, 450, 5000}) {
            NoisePicture picture(side, 5001 - side, 24);
            std::fill(picture.bits.begin(), picture.bits.end(), value);
            for (const ResizeFilter filter :
                 {ResizeFilter::kAutomatic, ResizeFilter::kLanczos3, ResizeFilter::kCatmullRom}) {
                const std::vector<uint8_t> rows = Resized(picture.View(), 80, 60, filter);
                EXPECT_EQ(std::count(rows.begin(), rows.end(), value), std::ssize(rows))
                    << side << " wide, value " << int{value};
            }
        }
    }
}

TEST(Resize, RoundsWeightsWithoutChangingTheirSum) {
    std::vector<double> exact;
    FixedWeights fixed;
    for (const int32_t sourceLength : {5, 40, 577, 4000, 30000}) {
        const FilterAxis axis(sourceLength, 37, ResizeFilter::kAutomatic);
        for (int32_t target = 0; target < 37; ++target) {
            axis.WeightsOf(target, exact);
            fixed.Assign(exact);
            const auto values = fixed.Values();
            EXPECT_EQ(std::accumulate(values.begin(), values.end(), 0) * fixed.Unit(), 1.0f);
        }
    }
}

TEST(Resize, KeepsPixelsWhenTheSizeStays) {
    for (const ResizeFilter filter : {ResizeFilter::kLanczos3, ResizeFilter::kCatmullRom}) {
        const NoisePicture picture(64, 50, 24);
        EXPECT_EQ(Resized(picture.View(), 64, 50, filter), picture.bits);
    }
}

TEST(Resize, IgnoresFourthByteAndRowOrder) {
    const NoisePicture picture(50, 40, 32);
    NoisePicture turned = picture;
    const size_t stride = 50 * 4;
    for (size_t y = 0; y < 40; ++y) {
        std::copy_n(&picture.bits[y * stride], stride, &turned.bits[(39 - y) * stride]);
    }
    const int32_t topDown = -40;
    std::memcpy(&turned.info[offsetof(dib::BitmapInfoHeader, height)], &topDown, sizeof(topDown));
    for (size_t i = 3; i < turned.bits.size(); i += 4)
        turned.bits[i] ^= 0xFF;
    EXPECT_EQ(Resized(picture.View(), 33, 21), Resized(turned.View(), 33, 21));
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
