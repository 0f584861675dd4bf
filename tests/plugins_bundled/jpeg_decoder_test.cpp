#include "plugins/iftessjpeg/jpeg_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::codec::test {
namespace {

const jpeg::JpegDecoder kDecoder;

// Where in the frame header the depth and the size are, counted from its marker.
constexpr size_t kPrecisionAt = 4;
constexpr size_t kHeightAt = 5;

Bytes::iterator FrameHeader(Bytes& file) {
    const uint8_t marker[] = {0xFF, 0xC0};
    return std::search(file.begin(), file.end(), std::begin(marker), std::end(marker));
}

// The picture is the plan's chequerboard, turned upright.
void ExpectTiles(const JpegPlan& plan) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(plan.kind) << ' ' << plan.orientation);
    const Decoded decoded(kDecoder, MakeJpeg(plan));
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.form.bitCount, plan.kind == JpegKind::kGrey ? 8 : 24);
    const Colors picture = decoded.Pixels();
    const uint16_t o = plan.orientation;
    ASSERT_EQ(picture.width, o >= 5 ? kJpegHeight : kJpegWidth);
    ASSERT_EQ(picture.height, o >= 5 ? kJpegWidth : kJpegHeight);
    EXPECT_EQ(decoded.form.width, picture.width);
    int worst = 0;
    for (uint32_t y = 0; y < kJpegHeight; ++y) {
        for (uint32_t x = 0; x < kJpegWidth; ++x) {
            // Where the TIFF document puts the stored pixel (x, y).
            const uint32_t across = o == 2 || o == 3 || o == 7 || o == 8 ? kJpegWidth - 1 - x : x;
            const uint32_t down = o == 3 || o == 4 || o == 6 || o == 7 ? kJpegHeight - 1 - y : y;
            for (unsigned c = 0; c < 3; ++c) {
                const int actual =
                    o >= 5 ? picture.Channel(down, across, c) : picture.Channel(across, down, c);
                worst = std::max(worst, std::abs(JpegChannel(plan.kind, x, y, c) - actual));
            }
        }
    }
    EXPECT_LE(worst, 3);
}

TEST(JpegDecoder, ShowsEveryKindUpright) {
    for (uint16_t orientation = 1; orientation <= 8; ++orientation) {
        ExpectTiles({.orientation = orientation});
        ExpectTiles({.kind = JpegKind::kGrey, .orientation = orientation});
    }
    ExpectTiles({.kind = JpegKind::kAdobeInk, .orientation = 6});
    ExpectTiles({.kind = JpegKind::kPlainInk});
    ExpectTiles({.progressive = true});

    const Decoded turned(kDecoder, MakeJpeg({.orientation = 6, .dotsPerInch = 100}));
    EXPECT_EQ(turned.form.xPelsPerMeter, 7874);  // the density down the stored picture
    EXPECT_EQ(turned.target.View()->Header().yPelsPerMeter, 3937);
}

TEST(JpegDecoder, ShowsWhatAFileCutShortHolds) {
    Bytes file = MakeJpeg({.orientation = 3});
    const Bytes headerOnly(file.begin(), file.begin() + 100);
    // Pixels are all there without the end mark, and whatever stands behind it.
    Bytes longer = file;
    longer.insert(longer.end(), {1, 2, 3});
    for (const Bytes& whole : {file, Bytes(file.begin(), file.end() - 2), longer})
        EXPECT_EQ(Decoded(kDecoder, whole).condition, Condition::kNone);
    file.resize(file.size() * 4 / 5);
    const Decoded decoded(kDecoder, file);
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.condition, Condition::kDamaged);
    const Colors picture = decoded.Pixels();
    EXPECT_NEAR(picture.Channel(kJpegWidth - 1, kJpegHeight - 1, 2),
                JpegChannel(JpegKind::kColor, 0, 0, 2), 3);
    EXPECT_EQ(picture.At(0, 0), 0x808080u);
    EXPECT_EQ(Decoded(kDecoder, headerOnly).result, Result::kBrokenData);
}

TEST(JpegDecoder, RefusesWhatItCannotShow) {
    EXPECT_EQ(Decoded(kDecoder, Bytes{'G', 'I', 'F', '8'}).result, Result::kUnknownFormat);
    EXPECT_EQ(Decoded(kDecoder, Bytes{}).result, Result::kUnknownFormat);
    Bytes deep = MakeJpeg({});
    FrameHeader(deep)[kPrecisionAt] = 12;
    EXPECT_EQ(Decoded(kDecoder, deep).result, Result::kUnknownFormat);

    // No memory may be taken for the 0.8 GB that this header announces.
    Bytes forged = MakeJpeg({});
    std::fill_n(FrameHeader(forged) + kHeightAt, 4, uint8_t{0x40});
    const Decoded decoded(kDecoder, forged);
    EXPECT_EQ(decoded.result, Result::kBrokenData);
    EXPECT_FALSE(decoded.target.View());
}

TEST(JpegDecoder, StopsWhenToldAndWhenTheDeviceFails) {
    const Bytes file = MakeJpeg({.progressive = true});
    int calls = 0, last = 0, total = 1;
    const Decoded stopped(kDecoder, file, Progress([&](int, int) { return ++calls < 2; }));
    EXPECT_EQ(stopped.result, Result::kAborted);
    EXPECT_EQ(calls, 2);
    const Decoded finished(kDecoder, file, Progress([&](int done, int all) {
                               EXPECT_GE(done, last);
                               last = done;
                               total = all;
                               return true;
                           }));
    EXPECT_EQ(finished.result, Result::kSuccess);
    EXPECT_EQ(last, total);

    FailingSource source(file, 300);
    MemoryTarget target;
    Progress nobody;
    EXPECT_EQ(kDecoder.Decode(source, target, nobody), Result::kReadError);
}

}  // namespace
}  // namespace tessary::codec::test
