#include "plugins/iftjpeg/jpeg_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::codec::test {
namespace {

const jpeg::JpegDecoder kDecoder;

// The marker, the length in two bytes, the depth, height and width.
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
    const uint32_t right = kJpegWidth - 1, bottom = kJpegHeight - 1;
    int worst = 0;
    for (uint32_t y = 0; y <= bottom; ++y) {
        for (uint32_t x = 0; x <= right; ++x) {
            // Where the TIFF document puts the stored pixel (x, y).
            uint32_t across = o == 2 || o == 3 || o == 7 || o == 8 ? right - x : x;
            uint32_t down = o == 3 || o == 4 || o == 6 || o == 7 ? bottom - y : y;
            if (o >= 5) std::swap(across, down);
            for (unsigned c = 0; c < 3; ++c) {
                const int wanted = JpegChannel(plan.kind, x, y, c);
                worst = std::max(worst, std::abs(wanted - picture.Channel(across, down, c)));
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

    const Decoded turned(kDecoder, MakeJpeg({.orientation = 6}));
    EXPECT_EQ(turned.form.xPelsPerMeter, 7874);  // the density down the stored picture
    EXPECT_EQ(turned.target.View()->Header().yPelsPerMeter, 3937);
}

TEST(JpegDecoder, ShowsWhatAFileCutShortHolds) {
    Bytes file = MakeJpeg({.orientation = 3});
    const Bytes headerOnly(file.begin(), file.begin() + 100);
    file.resize(file.size() * 4 / 5);
    const Decoded decoded(kDecoder, file);
    ASSERT_EQ(decoded.result, Result::kSuccess);
    const Colors picture = decoded.Pixels();
    EXPECT_NEAR(picture.Channel(kJpegWidth - 1, kJpegHeight - 1, 2),
                JpegChannel(JpegKind::kColor, 0, 0, 2), 3);
    EXPECT_EQ(picture.At(0, 0), 0x808080u);
    EXPECT_EQ(Decoded(kDecoder, headerOnly).result, Result::kBrokenData);
}

TEST(JpegDecoder, RefusesWhatItCannotShow) {
    EXPECT_EQ(Decoded(kDecoder, Bytes{}).result, Result::kUnknownFormat);
    Bytes deep = MakeJpeg({});
    FrameHeader(deep)[4] = 12;
    EXPECT_EQ(Decoded(kDecoder, deep).result, Result::kUnknownFormat);

    // No memory may be taken for the 0.8 GB that this header announces.
    Bytes forged = MakeJpeg({});
    std::fill_n(FrameHeader(forged) + 5, 4, uint8_t{0x40});
    const Decoded decoded(kDecoder, forged);
    EXPECT_EQ(decoded.result, Result::kBrokenData);
    EXPECT_FALSE(decoded.target.View());
}

TEST(JpegDecoder, StopsWhenToldAndWhenTheDeviceFails) {
    const Bytes file = MakeJpeg({.progressive = true});
    int calls = 0;
    const Decoded stopped(kDecoder, file, Progress([&](int, int) { return ++calls < 2; }));
    EXPECT_EQ(stopped.result, Result::kAborted);
    EXPECT_EQ(calls, 2);

    FailingSource source(file, 300);
    MemoryTarget target;
    Progress nobody;
    EXPECT_EQ(kDecoder.Decode(source, target, nobody), Result::kReadError);
}

}  // namespace
}  // namespace tessary::codec::test
