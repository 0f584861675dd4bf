#include "plugins/iftpng/png_decoder.h"

#include <algorithm>

#include "tests/plugins_bundled/made_pictures.h"
#include "tests/plugins_bundled/reference_pictures.h"

namespace tessary::codec::test {
namespace {

const png::PngDecoder kDecoder;

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

// The picture has `bitCount` bits and the reference's pixels, over grey of level `behind`.
void ExpectReference(const PngPlan& plan, int bitCount, int behind) {
    SCOPED_TRACE(testing::Message() << "type " << plan.colorType << " depth " << plan.depth
                                    << (plan.interlaced ? " interlaced" : "")
                                    << (plan.transparent ? " transparent" : "")
                                    << (plan.background ? " on a background" : ""));
    const Bytes file = MakePng(plan);
    const Decoded decoded(kDecoder, file);
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.form.bitCount, bitCount);
    ASSERT_TRUE(decoded.target.View());
    const dib::BitmapInfoHeader header = decoded.target.View()->Header();
    EXPECT_EQ(header.bitCount, bitCount);
    EXPECT_EQ(header.xPelsPerMeter, 3937);
    EXPECT_EQ(header.yPelsPerMeter, 7874);
    const Colors picture = decoded.Pixels();
    ASSERT_EQ(picture.width, plan.width);
    PngPlan straight = plan;  // libpng's short way misreads some interlaced files
    straight.interlaced = false;
    const Bytes expected = ReadPng(MakePng(straight));
    const int worst = WorstDifference(picture.bgra, expected, behind);
    EXPECT_LE(worst, plan.depth == 16 ? 3 : 1);  // one cuts 16-bit samples, the other rounds
}

TEST(PngDecoder, ReadsEveryKind) {
    for (const Kind& kind : kKinds) {
        for (const bool interlaced : {false, true}) {
            PngPlan plan{.colorType = kind.colorType, .depth = kind.depth};
            plan.interlaced = interlaced;
            plan.transparent = kind.colorType < kGreyAlpha;
            ExpectReference(plan, kind.bitCount, 255);
            plan.background = static_cast<uint16_t>(kind.depth == 16 ? 0x2345 : 1);
            const int level = kind.depth == 16 ? 0x23 : 255 / ((1 << kind.depth) - 1);
            ExpectReference(plan, kind.bitCount,
                            kind.colorType == kPalette ? PngPaletteLevel(1) : level);
        }
    }
}

TEST(PngDecoder, ShowsWhatAFileCutShortHolds) {
    for (const Kind& kind : kKinds) {
        SCOPED_TRACE(testing::Message() << kind.colorType << ' ' << kind.depth);
        Bytes file = MakePng(
            {.width = 300, .height = 300, .colorType = kind.colorType, .depth = kind.depth});
        const uint32_t whole = Decoded(kDecoder, file).Pixels().At(0, 96);
        file.resize(file.size() / 2);
        const Decoded decoded(kDecoder, file);
        ASSERT_EQ(decoded.result, Result::kSuccess);
        EXPECT_EQ(decoded.Pixels().At(0, 96), whole);
        EXPECT_TRUE(kind.colorType == kPalette || decoded.Pixels().At(299, 299) == 0xFFFFFF);
        file.resize(70);
        EXPECT_EQ(Decoded(kDecoder, file).result, Result::kBrokenData);
    }
}

TEST(PngDecoder, RefusesDamagedAndForgedFiles) {
    const Bytes good = MakePng({});
    const struct {
        size_t at;
        Result result;
    } damages[] = {{2, Result::kUnknownFormat},  // signature
                   {19, Result::kBrokenData},    // width
                   {100, Result::kBrokenData},   // pixels
                   // The pixels' check sum stands before the end chunk, which nobody needs.
                   {good.size() - 13, Result::kBrokenData},
                   {good.size() - 1, Result::kSuccess}};
    for (const auto& damage : damages) {
        Bytes file = good;
        file[damage.at] ^= 1;
        EXPECT_EQ(Decoded(kDecoder, file).result, damage.result) << damage.at;
    }

    // 60000 x 60000 pixels, with the right check sum.
    Bytes forged = good;
    const uint8_t header[] = {0, 0, 0xEA, 0x60, 0,    0,    0xEA, 0x60, 8,
                              2, 0, 0,    0,    0x0F, 0xB0, 0xE2, 0x15};
    std::copy(std::begin(header), std::end(header), forged.begin() + 16);
    const Decoded decoded(kDecoder, forged);
    EXPECT_EQ(decoded.result, Result::kOutOfMemory);
    EXPECT_FALSE(decoded.target.View());
}

TEST(PngDecoder, StopsWhenToldAndWhenTheDeviceFails) {
    const Bytes file = MakePng({.width = 100, .height = 100});
    int calls = 0;
    const Decoded stopped(kDecoder, file, Progress([&](int, int) { return ++calls < 2; }));
    EXPECT_EQ(stopped.result, Result::kAborted);
    EXPECT_EQ(calls, 2);

    FailingSource source(file, 200);
    MemoryTarget target;
    Progress nobody;
    EXPECT_EQ(kDecoder.Decode(source, target, nobody), Result::kReadError);
}

}  // namespace
}  // namespace tessary::codec::test
