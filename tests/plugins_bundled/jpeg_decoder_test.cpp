#include "plugins/iftessjpeg/jpeg_decoder.h"

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/seeds.h"

namespace tessary::codec::test {
namespace {

using namespace tessary::test;

const jpeg::JpegDecoder kDecoder;

// All pictures are a chequerboard of 5 x 3 flat tiles, so that every pixel comes back nearly as it
// was.
constexpr uint32_t kTile = 40, kWidth = 5 * kTile, kHeight = 3 * kTile;
constexpr int kBlackInk = 51;  // of 255, in all pixels of an ink picture

// With another orientation in its EXIF entry, of either byte order.
Bytes Jpeg(const std::string& name, uint32_t orientation = 1) {
    const Bytes file = Seed("fuzz_jpeg/" + name);
    const size_t exif = Find(file, "Exif");
    return With(file, exif + (file[exif + 6] == 'M' ? 25 : 24), orientation);
}

// One channel (0 blue, 1 green, 2 red) of a pixel of the stored picture.
int Channel(const std::string& name, uint32_t x, uint32_t y, unsigned channel) {
    const int column = static_cast<int>(x / kTile), row = static_cast<int>(y / kTile);
    int sample = channel == 1 ? 20 + row * 80 : 200 - column * 20;
    if (channel == 2 || name == "grey") sample = 30 + column * 45 + row * 10;
    return name.ends_with("ink") ? (255 - sample) * (255 - kBlackInk) / 255 : sample;
}

// The picture is the chequerboard, turned upright.
void ExpectTiles(const std::string& name, uint32_t o = 1) {
    SCOPED_TRACE(name + ' ' + std::to_string(o));
    const Decoded decoded(kDecoder, Jpeg(name, o));
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.form.bitCount, name == "grey" ? 8 : 24);
    const Colors picture = decoded.Pixels();
    ASSERT_EQ(picture.width, o >= 5 ? kHeight : kWidth);
    ASSERT_EQ(picture.height, o >= 5 ? kWidth : kHeight);
    EXPECT_EQ(decoded.form.width, picture.width);
    int worst = 0;
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x) {
            // Where the TIFF document puts the stored pixel (x, y).
            const uint32_t across = o == 2 || o == 3 || o == 7 || o == 8 ? kWidth - 1 - x : x;
            const uint32_t down = o == 3 || o == 4 || o == 6 || o == 7 ? kHeight - 1 - y : y;
            for (unsigned c = 0; c < 3; ++c) {
                const int actual =
                    o >= 5 ? picture.Channel(down, across, c) : picture.Channel(across, down, c);
                worst = std::max(worst, std::abs(Channel(name, x, y, c) - actual));
            }
        }
    }
    EXPECT_LE(worst, 3);
}

// As somebody asks for it who shows it small: the averages of the pixels.
TEST(JpegDecoder, ComesAsMuchSmallerAsIsEnough) {
    for (const char* const name : {"color", "grey", "progressive", "adobe-ink", "plain-ink"}) {
        for (const uint32_t orientation : {1U, 6U}) {
            const Bytes file = Jpeg(name, orientation);
            const Decoded whole(kDecoder, file);
            const Colors pixels = whole.Pixels();
            for (const auto& [enough, factor] : {std::pair{kWidth / 2 + 1, 1U},
                                                 {kWidth / 4 + 1, 2U},
                                                 {kWidth / 8, 8U},
                                                 {1U, 8U}}) {
                MemoryTarget target;
                target.enough = enough;
                dib::MemorySource source(file);
                Progress nobody;
                ASSERT_EQ(kDecoder.Decode(source, target, nobody), Result::kSuccess);
                const Colors small(target.View().value());
                ASSERT_EQ(small.width, pixels.width / factor) << name;
                ASSERT_EQ(small.height, pixels.height / factor) << name;
                int worst = 0;
                for (uint32_t tile = 0; tile < 15; ++tile) {  // in the middle of each
                    const uint32_t column = tile % 5, row = tile / 5;
                    const uint32_t x = (orientation == 1 ? column : row) * kTile + kTile / 2;
                    const uint32_t y = (orientation == 1 ? row : column) * kTile + kTile / 2;
                    for (unsigned c = 0; c < 3; ++c)
                        worst = std::max(worst, std::abs(pixels.Channel(x, y, c) -
                                                         small.Channel(x / factor, y / factor, c)));
                }
                EXPECT_LE(worst, 4) << name << ' ' << enough;
            }
        }
    }
}

TEST(JpegDecoder, ShowsEveryKindUpright) {
    for (uint32_t orientation = 1; orientation <= 8; ++orientation) {
        ExpectTiles("color", orientation);
        ExpectTiles("grey", orientation);
    }
    ExpectTiles("adobe-ink", 6);
    ExpectTiles("plain-ink");
    ExpectTiles("progressive");

    const Decoded turned(kDecoder, Jpeg("color", 6));
    EXPECT_EQ(turned.form.xPelsPerMeter, 7874);  // the density down the stored picture
    EXPECT_EQ(turned.target.View()->Header().yPelsPerMeter, 3937);
}

TEST(JpegDecoder, ShowsWhatAFileCutShortHolds) {
    const Bytes file = Jpeg("color", 3);
    // Pixels are all there without the end mark, and whatever stands behind it.
    for (const size_t size : {file.size(), file.size() - 2, file.size() + 3})
        EXPECT_EQ(Decoded(kDecoder, Cut(file, size)).condition, Condition::kNone);
    const Decoded decoded(kDecoder, Cut(file, file.size() * 4 / 5));
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.condition, Condition::kDamaged);
    const Colors picture = decoded.Pixels();
    EXPECT_NEAR(picture.Channel(kWidth - 1, kHeight - 1, 2), Channel("color", 0, 0, 2), 3);
    EXPECT_EQ(picture.At(0, 0), 0x808080u);
    EXPECT_EQ(Decoded(kDecoder, Cut(file, 100)).result, Result::kBrokenData);
}

TEST(JpegDecoder, RefusesWhatItCannotShow) {
    EXPECT_EQ(Decoded(kDecoder, Bytes{'G', 'I', 'F', '8'}).result, Result::kUnknownFormat);
    EXPECT_EQ(Decoded(kDecoder, Bytes{}).result, Result::kUnknownFormat);
    const Bytes file = Jpeg("color");
    const size_t frame = Find(file, "\xFF\xC0");
    EXPECT_EQ(Decoded(kDecoder, With(file, frame + 4, 12)).result,
              Result::kUnknownFormat);  // depth

    // No memory may be taken for the 0.8 GB that this header announces.
    const Decoded decoded(kDecoder, With(file, frame + 5, 0x40404040, 4));
    EXPECT_EQ(decoded.result, Result::kBrokenData);
    EXPECT_FALSE(decoded.target.View());

    EXPECT_EQ(ResultFromFailing(kDecoder, file, 300), Result::kReadError);
}

}  // namespace
}  // namespace tessary::codec::test
