// The decoders over pictures of other programs, where those are at hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "helpers/dib/bitmap_file.h"
#include "plugins/iftessjpeg/jpeg_decoder.h"
#include "plugins/iftesspng/png_decoder.h"
#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/content_of.h"
#include "tests/support/picture_set.h"

namespace tessary::codec::test {
namespace {

using tessary::test::ContentOf;
using tessary::test::PictureFolder;

Colors ReadBitmap(const std::filesystem::path& path) {
    const Bytes file = ContentOf<Bytes>(path);
    dib::MemorySource source(file);
    dib::BitmapFile bitmap(source);
    EXPECT_EQ(bitmap.Open(), dib::DibError::kNone);
    Bytes bits(bitmap.BitsSize());
    EXPECT_EQ(bitmap.ReadBits(bits, {}), dib::DibError::kNone);
    return Colors(*dib::DibView::Of(bitmap.Info(), bits));
}

// Largest difference to a bitmap with alpha. On a background of the file's own (not `onWhite`) only
// the opaque pixels are known.
int WorstDifference(const Colors& actual, const Colors& expected, bool onWhite) {
    int worst = 0;
    for (uint32_t y = 0; y < actual.height; ++y) {
        for (uint32_t x = 0; x < actual.width; ++x) {
            const int alpha = expected.Channel(x, y, 3);
            for (unsigned c = 0; c < 3 && (onWhite || alpha == 255); ++c) {
                const int wanted = (expected.Channel(x, y, c) * alpha + 255 * (255 - alpha)) / 255;
                worst = std::max(worst, std::abs(actual.Channel(x, y, c) - wanted));
            }
        }
    }
    return worst;
}

TEST(PictureSet, PngSuiteLooksAsItShould) {
    const auto folder = PictureFolder() / "pngsuite";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no pictures in " << folder;
    const png::PngDecoder decoder;
    for (const auto& entry : std::filesystem::directory_iterator(folder / "png")) {
        SCOPED_TRACE(entry.path());
        const Bytes file = ContentOf<Bytes>(entry.path());
        const Decoded decoded(decoder, file);
        if (entry.path().filename().string().starts_with('x')) {  // damaged on purpose
            const bool hasRows = decoded.result == Result::kSuccess;
            EXPECT_EQ(decoded.condition == Condition::kDamaged, hasRows);
            EXPECT_TRUE(hasRows ||
                        decoded.result == (decoder.IsSupported(file) ? Result::kBrokenData
                                                                     : Result::kUnknownFormat));
            continue;
        }
        ASSERT_EQ(decoded.result, Result::kSuccess);
        const Colors actual = decoded.Pixels();
        const Colors expected =
            ReadBitmap(folder / "bmp" / entry.path().filename().replace_extension(".bmp"));
        ASSERT_EQ(actual.width, expected.width);
        ASSERT_EQ(actual.height, expected.height);
        constexpr std::string_view kBackground = "bKGD";
        const bool onWhite = std::search(file.begin(), file.end(), kBackground.begin(),
                                         kBackground.end()) == file.end();
        EXPECT_LE(WorstDifference(actual, expected, onWhite), 1);
    }
}

// Mean level of a tenth of a picture's height, at its left edge.
double EdgeLevel(const Colors& picture, uint32_t tenth) {
    const uint32_t height = picture.height / 10, width = picture.width / 4;
    double sum = 0;
    for (uint32_t y = 0; y < height; ++y) {
        for (uint32_t x = 0; x < width; ++x)
            sum += picture.Channel(x, tenth * height + y, 1);
    }
    return sum / (width * height);
}

TEST(PictureSet, AllRotationsShowTheSamePicture) {
    const auto folder = PictureFolder() / "photos";
    if (!std::filesystem::is_directory(folder)) GTEST_SKIP() << "no pictures in " << folder;
    const jpeg::JpegDecoder decoder;
    const Colors upright = Decoded(decoder, ContentOf<Bytes>(folder / "rotation-1.jpg")).Pixels();
    for (char digit = '2'; digit <= '8'; ++digit) {
        std::string name = "rotation-?.jpg";
        name[9] = digit;
        const Colors picture = Decoded(decoder, ContentOf<Bytes>(folder / name)).Pixels();
        for (uint32_t tenth = 0; tenth < 10; ++tenth) {
            EXPECT_NEAR(EdgeLevel(picture, tenth), EdgeLevel(upright, tenth), 12) << name << tenth;
        }
    }
}

}  // namespace
}  // namespace tessary::codec::test
