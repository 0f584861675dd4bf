#include "plugins/iftesspng/png_decoder.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::codec::test {
namespace {

// Unpacks the picture data within libpng, or ahead of it.
const png::PngDecoder kPlain(~uint64_t{0});
const png::PngDecoder kAhead(0);

class PngDecoder : public testing::TestWithParam<const png::PngDecoder*> {
  protected:
    const png::PngDecoder& decoder_ = *GetParam();
};

INSTANTIATE_TEST_SUITE_P(Both, PngDecoder, testing::Values(&kPlain, &kAhead));

enum ColorType { kGrey = 0, kColor = 2, kPalette = 3, kGreyAlpha = 4, kColorAlpha = 6 };

struct Kind {
    int colorType;
    int depth;
    int bitCount;  // of the decoded picture
};

constexpr Kind kKinds[] = {
    {kGrey, 1, 1},       {kGrey, 2, 4},        {kGrey, 4, 4},         {kGrey, 8, 8},
    {kGrey, 16, 8},      {kColor, 8, 24},      {kColor, 16, 24},      {kPalette, 1, 1},
    {kPalette, 2, 4},    {kPalette, 4, 4},     {kPalette, 8, 8},      {kGreyAlpha, 8, 8},
    {kGreyAlpha, 16, 8}, {kColorAlpha, 8, 24}, {kColorAlpha, 16, 24},
};

// The pixels as libpng's own short way unpacks them: 8-bit blue, green, red, alpha.
Bytes Reference(const Bytes& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size()));
    image.format = PNG_FORMAT_BGRA;
    image.flags = PNG_IMAGE_FLAG_16BIT_sRGB;
    Bytes pixels(PNG_IMAGE_SIZE(image));
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
    return pixels;
}

// The picture has `bitCount` bits and the reference's pixels, over grey of level `behind`.
void ExpectReference(const png::PngDecoder& decoder, const PngPlan& plan, int bitCount,
                     int behind) {
    SCOPED_TRACE(testing::Message() << "type " << plan.colorType << " depth " << plan.depth
                                    << (plan.interlaced ? " interlaced" : "")
                                    << (plan.transparent ? " transparent" : "")
                                    << (plan.background ? " on a background" : ""));
    const Bytes file = MakePng(plan);
    const Decoded decoded(decoder, file);
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.form.bitCount, bitCount);
    ASSERT_TRUE(decoded.target.View());
    const dib::BitmapInfoHeader header = decoded.target.View()->Header();
    EXPECT_EQ(header.bitCount, bitCount);
    EXPECT_EQ(header.xPelsPerMeter, 3937);
    EXPECT_EQ(header.yPelsPerMeter, 7874);
    const Colors picture = decoded.Pixels();
    ASSERT_EQ(picture.width, plan.width);
    ASSERT_EQ(picture.height, plan.height);
    PngPlan straight = plan;
    straight.interlaced = false;
    const Bytes expected = Reference(MakePng(straight));
    int worst = 0;
    for (size_t i = 0; i < expected.size(); i += 4) {
        for (unsigned c = 0; c < 3; ++c) {
            const int wanted =
                (expected[i + c] * expected[i + 3] + behind * (255 - expected[i + 3])) / 255;
            const auto x = static_cast<uint32_t>(i / 4 % plan.width);
            const auto y = static_cast<uint32_t>(i / 4 / plan.width);
            worst = std::max(worst, std::abs(picture.Channel(x, y, c) - wanted));
        }
    }
    EXPECT_LE(worst,
              plan.depth == 16 ? 3 : 1);  // 16-bit samples are cut by one, rounded by the other
}

TEST_P(PngDecoder, ReadsEveryKind) {
    for (const Kind& kind : kKinds) {
        for (const bool interlaced : {false, true}) {
            PngPlan plan{.colorType = kind.colorType, .depth = kind.depth};
            plan.interlaced = interlaced;
            plan.width = 1;
            ExpectReference(decoder_, plan, kind.bitCount, 255);
            plan.width = 21;
            plan.transparent = kind.colorType < kGreyAlpha;
            ExpectReference(decoder_, plan, kind.bitCount, 255);
            plan.background = static_cast<uint16_t>(kind.depth == 16 ? 0x2345 : 1);
            const int level = kind.depth == 16 ? 0x23 : 255 / ((1 << kind.depth) - 1);
            ExpectReference(decoder_, plan, kind.bitCount,
                            kind.colorType == kPalette ? PngPaletteLevel(1) : level);
        }
    }
}

TEST_P(PngDecoder, HandsAlphaToThoseWhoTakeIt) {
    const PngPlan plans[] = {
        {.colorType = kGrey, .depth = 16, .transparent = true},
        {.colorType = kColor, .depth = 8, .transparent = true},
        {.colorType = kGreyAlpha, .depth = 8},
        {.colorType = kColorAlpha, .depth = 8, .interlaced = true},
        {.colorType = kColorAlpha, .depth = 16},
    };
    for (const PngPlan& plan : plans) {
        SCOPED_TRACE(&plan - plans);
        const Bytes file = MakePng(plan);
        dib::MemorySource source(file);
        MemoryTarget target(SIZE_MAX, true);
        Progress nobody;
        ASSERT_EQ(decoder_.Decode(source, target, nobody), Result::kSuccess);
        ASSERT_TRUE(target.View());
        EXPECT_EQ(target.View()->Format(), dib::PixelFormat::kBgra32);
        const Colors picture(*target.View());
        PngPlan straight = plan;
        straight.interlaced = false;
        const Bytes expected = Reference(MakePng(straight));
        for (size_t i = 0; i < expected.size(); ++i) {
            const auto pixel = static_cast<uint32_t>(i / 4);
            EXPECT_NEAR(picture.Channel(pixel % plan.width, pixel / plan.width, i % 4), expected[i],
                        plan.depth == 16 ? 1 : 0);
        }
    }
}

TEST_P(PngDecoder, ShowsWhatAFileCutShortHolds) {
    for (const Kind& kind : kKinds) {
        for (const bool interlaced : {false, true}) {
            SCOPED_TRACE(testing::Message() << kind.colorType << ' ' << kind.depth);
            Bytes file = MakePng({.width = 300,
                                  .height = 300,
                                  .colorType = kind.colorType,
                                  .depth = kind.depth,
                                  .interlaced = interlaced});
            const Decoded whole(decoder_, file);
            // Nothing is missing yet: IEND and the data's check sum hold no pixels.
            const Bytes noEnd(file.begin(), file.end() - 14);
            EXPECT_EQ(whole.condition, Condition::kNone);
            EXPECT_EQ(Decoded(decoder_, noEnd).condition, Condition::kNone);
            file.resize(file.size() / 2);
            const Decoded decoded(decoder_, file);
            ASSERT_EQ(decoded.result, Result::kSuccess);
            EXPECT_EQ(decoded.condition, Condition::kDamaged);
            const Colors picture = decoded.Pixels();
            EXPECT_EQ(picture.At(0, 96), whole.Pixels().At(0, 96));
            if (!interlaced && kind.colorType != kPalette) {
                EXPECT_EQ(picture.At(299, 299), 0xFFFFFFu);
            }
        }
    }
    Bytes noRow = MakePng({});
    noRow.resize(70);
    EXPECT_EQ(Decoded(decoder_, noRow).result, Result::kBrokenData);
}

TEST_P(PngDecoder, ShowsWhatADamagedFileHolds) {
    for (const bool interlaced : {false, true}) {
        const Bytes good = MakePng({.width = 300, .height = 300, .interlaced = interlaced});
        const Decoded whole(decoder_, good);
        // The check sum of the last data stands in front of the end chunk's 12 bytes, and in front
        // of it that of the stream, which nobody looks at.
        for (const size_t at : {good.size() / 2, good.size() - 13}) {
            Bytes file = good;
            file[at] ^= 1;
            const Decoded noise(decoder_, file);
            ASSERT_EQ(noise.result, Result::kSuccess);
            EXPECT_EQ(noise.condition, Condition::kDamaged);
            EXPECT_EQ(noise.Pixels().At(0, 96), whole.Pixels().At(0, 96));
        }
        // Another chunk in the middle of the data, where a new chunk of them begins.
        const uint8_t name[] = {'I', 'D', 'A', 'T'};
        const auto half = good.begin() + static_cast<ptrdiff_t>(good.size() / 2);
        const auto found = std::search(half, good.end(), std::begin(name), std::end(name));
        ASSERT_NE(found, good.end());
        Bytes file = good;
        file[static_cast<size_t>(found - good.begin())] = 'X';
        const Decoded part(decoder_, file);
        ASSERT_EQ(part.result, Result::kSuccess);
        EXPECT_EQ(part.condition, Condition::kDamaged);
        EXPECT_EQ(part.Pixels().At(0, 96), whole.Pixels().At(0, 96));
        if (!interlaced) {
            EXPECT_EQ(part.Pixels().At(299, 299), 0xFFFFFFu);
        }
    }
}

TEST_P(PngDecoder, RefusesDamagedAndForgedFiles) {
    const Bytes good = MakePng({});
    const auto resultWithDamageAt = [&](size_t at) {
        Bytes file = good;
        file[at] ^= 1;
        return Decoded(decoder_, file).result;
    };
    EXPECT_EQ(resultWithDamageAt(2), Result::kUnknownFormat);  // signature
    EXPECT_EQ(resultWithDamageAt(19), Result::kBrokenData);    // width
    EXPECT_EQ(resultWithDamageAt(62), Result::kBrokenData);    // head of the pixels
    EXPECT_EQ(resultWithDamageAt(good.size() - 1), Result::kSuccess);

    // 60000 x 60000 pixels, with the right check sum.
    Bytes forged = good;
    const uint8_t header[] = {0, 0, 0xEA, 0x60, 0,    0,    0xEA, 0x60, 8,
                              2, 0, 0,    0,    0x0F, 0xB0, 0xE2, 0x15};
    std::copy(std::begin(header), std::end(header), forged.begin() + 16);
    const Decoded decoded(decoder_, forged);
    EXPECT_EQ(decoded.result, Result::kOutOfMemory);
    EXPECT_FALSE(decoded.target.View());
}

TEST_P(PngDecoder, StopsWhenToldAndWhenTheDeviceFails) {
    const Bytes file = MakePng({.width = 100, .height = 100});
    int calls = 0;
    const Decoded stopped(decoder_, file, Progress([&](int, int) { return ++calls < 2; }));
    EXPECT_EQ(stopped.result, Result::kAborted);
    EXPECT_EQ(calls, 2);

    FailingSource source(file, 200);
    MemoryTarget target;
    Progress nobody;
    EXPECT_EQ(decoder_.Decode(source, target, nobody), Result::kReadError);
}

// Wherever a file of several chunks is cut or damaged.
TEST(PngDecoderAhead, TellsTheSameAsThePlainOne) {
    const Bytes good = MakePng({.width = 400, .height = 300, .colorType = kColor});
    const size_t step = good.size() / 150 + 1;
    for (size_t at = 30; at < good.size(); at += at < 60 ? 1 : step) {
        Bytes cut = good;
        cut.resize(at);
        Bytes damaged = good;
        damaged[at] ^= 0x10;
        for (const Bytes& file : {cut, damaged}) {
            const Decoded plain(kPlain, file);
            const Decoded ahead(kAhead, file);
            ASSERT_EQ(ahead.result, plain.result) << at;
            ASSERT_EQ(ahead.condition, plain.condition) << at;
            if (plain.result != Result::kSuccess) continue;
            // Ahead, a few bytes more come out of what is there.
            const Colors expected = plain.Pixels(), picture = ahead.Pixels();
            const uint32_t whole = static_cast<uint32_t>(at * 300 / good.size());
            for (uint32_t y = 0; y + 8 < whole; ++y)
                ASSERT_EQ(picture.At(y, y), expected.At(y, y)) << at;
        }
    }
}

}  // namespace
}  // namespace tessary::codec::test
