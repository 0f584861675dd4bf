#include "helpers/kernel/resize.h"

#include <numeric>

#include "helpers/kernel/column_pass.h"
#include "tests/helpers/dib/sample_picture.h"
#include "tests/helpers/kernel/reference_resize.h"

namespace tessary::kernel {
namespace {

using dib::PixelFormat;
using dib::test::SamplePicture;

constexpr auto k1 = PixelFormat::kIndexed1;
constexpr auto k8 = PixelFormat::kIndexed8;
constexpr auto k24 = PixelFormat::kBgr24;
constexpr auto k32 = PixelFormat::kBgrx32;

// Whatever the processor has comes to the same.
std::vector<uint8_t> Resized(const dib::DibView& source, int32_t width, int32_t height,
                             ResizeFilter filter = ResizeFilter::kAutomatic,
                             Light light = Light::kStored) {
    const uint64_t stride =
        dib::RowStride(static_cast<uint64_t>(width), ResizedBits(source, light));
    std::vector<uint8_t> rows(static_cast<size_t>(stride) * static_cast<size_t>(height), 0xEE);
    std::vector<uint8_t> plain = rows;
    const Part all{0, 0, width, height};
    constexpr auto kWhite = dib::Backdrop::kWhite;
    Resize(source, width, height, all, filter, rows, BestInstructions(), kWhite, light);
    Resize(source, width, height, all, filter, plain, Instructions::kSse2, kWhite, light);
    EXPECT_EQ(rows, plain) << "with this processor's own instructions";
    return rows;
}

void ExpectLikeReference(const SamplePicture& picture, int32_t width, int32_t height) {
    const dib::DibView source = picture.View();
    for (const Light light : {Light::kStored, Light::kLinear}) {
        if (ResizedBits(source, light) == 32) continue;
        const auto rows = Resized(source, width, height, ResizeFilter::kAutomatic, light);
        // Near black a step of light is a tenth of a level, and half of one is lost.
        const double most = light == Light::kStored ? kMostDeviation : 0.62;
        EXPECT_LE(WorstDeviation(source, width, height, rows, light), most)
            << source.Width() << 'x' << source.Height() << ", " << source.Header().bitCount
            << " bits, to " << width << 'x' << height << (light == Light::kStored ? "" : ", light");
    }
}

TEST(Resize, MixesEveryDepthAndSizeLikeTheReference) {
    // Widths around the sizes of whole registers, in both row orders, shrunk, enlarged and both.
    for (const PixelFormat format : dib::test::kAllFormats) {
        for (int32_t width = 1; width <= 35; ++width) {
            const int32_t height = width % 2 == 0 ? 36 - width : width - 36;
            const SamplePicture picture(format, width, height);
            ExpectLikeReference(picture, 7, 5);
            ExpectLikeReference(picture, 19, 11);
            ExpectLikeReference(picture, 36, 40);
        }
    }
}

TEST(Resize, TakesExtremeShapes) {
    for (const PixelFormat format : {k1, k8, k24, k32}) {
        ExpectLikeReference({format, 1, 30000}, 20, 16);
        ExpectLikeReference({format, 30000, 1}, 16, 20);
        ExpectLikeReference({format, 1, 1}, 1280, 1024);
        ExpectLikeReference({format, 3, 2}, 1, 3000);
        ExpectLikeReference({format, 40, 30}, 3000, 1);
    }
    // More rows under the filter than are unpacked at a time: a white stripe on black tells which
    // ones were mixed.
    for (const int32_t height : {2000, -2000}) {
        SamplePicture picture(k8, 3000, height);
        std::fill_n(&picture.info[dib::kInfoHeaderSize], 3, uint8_t{255});
        std::fill_n(&picture.info[dib::kInfoHeaderSize + 4], 3, uint8_t{0});
        std::fill(picture.bits.begin(), picture.bits.end(), uint8_t{1});
        std::fill_n(picture.bits.begin(), 3000 * 200, uint8_t{0});
        ExpectLikeReference(picture, 3, 1);
        ExpectLikeReference(picture, 2, 3);
    }
}

TEST(Resize, MakesAPartAsItStandsInTheWhole) {
    for (const PixelFormat format : dib::test::kAllFormats) {
        const SamplePicture picture(format, 203, format == k8 ? -151 : 151);
        const dib::DibView source = picture.View();
        for (const auto& [width, height] : {std::pair{61, 47}, {700, 500}, {203, 151}}) {
            const std::vector<uint8_t> whole = Resized(source, width, height);
            const auto wholeStride = dib::RowStride(static_cast<uint64_t>(width), 24);
            for (const Part& part :
                 {Part{0, 0, 1, 1}, Part{width - 1, height - 1, 1, 1},
                  Part{width / 3, height / 4, 17, 13}, Part{width - 20, 0, 20, height}}) {
                const auto stride = dib::RowStride(static_cast<uint64_t>(part.width), 24);
                std::vector<uint8_t> rows(stride * static_cast<size_t>(part.height));
                Resize(source, width, height, part, ResizeFilter::kAutomatic, rows);
                for (int32_t y = 0; y < part.height; ++y) {
                    const uint8_t* const made =
                        &rows[static_cast<size_t>(part.height - 1 - y) * stride];
                    const uint8_t* const expected =
                        &whole[static_cast<size_t>(height - 1 - part.top - y) * wholeStride +
                               static_cast<size_t>(part.left) * 3];
                    ASSERT_TRUE(std::equal(made, made + size_t{3} * part.width, expected))
                        << width << " wide, part at " << part.left << ", row " << y;
                }
            }
        }
    }
}

TEST(Resize, SharesLargePicturesAmongThreads) {
    ExpectLikeReference({k24, 1501, 1000}, 433, 289);
    ExpectLikeReference({k32, 1500, -1001}, 640, 480);
    ExpectLikeReference({k8, 2000, 1500}, 999, 13);
    ExpectLikeReference({PixelFormat::kIndexed4, 200, 150}, 1601, 1200);
}

TEST(Resize, LeavesFlatPicturesFlat) {
    for (const uint8_t value : {0, 1, 127, 254, 255}) {
        for (const int32_t side : {1, 2, 7, 64, 450, 5000}) {
            SamplePicture picture(k24, side, 5001 - side);
            std::fill(picture.bits.begin(), picture.bits.end(), value);
            for (const ResizeFilter filter :
                 {ResizeFilter::kAutomatic, ResizeFilter::kLanczos3, ResizeFilter::kCatmullRom}) {
                for (const Light light : {Light::kStored, Light::kLinear}) {
                    const auto rows = Resized(picture.View(), 80, 60, filter, light);
                    EXPECT_EQ(std::count(rows.begin(), rows.end(), value), std::ssize(rows))
                        << side << " wide, value " << int{value};
                }
            }
        }
    }
}

// What is clear has no say in the colours, and they are not multiplied by alpha in the result.
TEST(Resize, KeepsAlphaInLinearLight) {
    for (const int32_t side : {40, 333}) {
        SamplePicture picture(PixelFormat::kBgra32, side, -side);
        for (size_t i = 0; i < picture.bits.size(); i += 4) {
            const bool isClear = i / 4 % 2 == 0;
            const uint8_t pixel[] = {30, 140, 250, 255}, clear[] = {255, 0, 0, 0};
            std::copy_n(isClear ? clear : pixel, 4, &picture.bits[i]);
        }
        const auto rows = Resized(picture.View(), 12, 9, ResizeFilter::kAutomatic, Light::kLinear);
        ASSERT_EQ(rows.size(), 12u * 9 * 4);
        for (size_t i = 0; i < rows.size(); i += 4) {
            EXPECT_NEAR(rows[i], 30, 1);
            EXPECT_NEAR(rows[i + 1], 140, 1);
            EXPECT_NEAR(rows[i + 2], 250, 1);
            EXPECT_NEAR(rows[i + 3], 127.5, 16) << i;
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

TEST(Resize, RefusesRowsThatNoMemoryCanHold) {
    std::vector<uint8_t> bits(dib::RowStride(1u << 27, 1));
    SamplePicture picture(k1, 1, 1);
    const int32_t width = 1 << 27;
    std::memcpy(&picture.info[offsetof(dib::BitmapInfoHeader, width)], &width, sizeof(width));
    std::vector<uint8_t> rows(4);
    const dib::DibView view = dib::DibView::Of(picture.info, bits).value();
    EXPECT_THROW(Resize(view, 1, 1, {0, 0, 1, 1}, ResizeFilter::kAutomatic, rows),
                 std::length_error);
}

}  // namespace
}  // namespace tessary::kernel
