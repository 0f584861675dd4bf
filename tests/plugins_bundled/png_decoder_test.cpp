#include "plugins/iftesspng/png_decoder.h"

#include <png.h>

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/seeds.h"

namespace tessary::codec::test {
namespace {

using namespace tessary::test;

// Unpacks the picture data within libpng, or ahead of it.
const png::PngDecoder kPlain(~uint64_t{0});
const png::PngDecoder kAhead(0);

class PngDecoder : public testing::TestWithParam<const png::PngDecoder*> {
  protected:
    const png::PngDecoder& decoder_ = *GetParam();
};

INSTANTIATE_TEST_SUITE_P(Both, PngDecoder, testing::Values(&kPlain, &kAhead));

// Pictures of noise with clear pixels, on a grey background of their own.
struct Kind {
    std::string name;
    int bitCount;  // of the decoded picture
    int behind;    // level of the background
};

const Kind kKinds[] = {
    {"grey1", 1, 255},       {"grey2", 4, 85},          {"grey4", 4, 17},
    {"grey8", 8, 1},         {"grey16", 8, 0x23},       {"color8", 24, 1},
    {"color16", 24, 0x23},   {"palette1", 1, 57},       {"palette2", 4, 57},
    {"palette4", 4, 57},     {"palette8", 8, 57},       {"grey-alpha8", 8, 1},
    {"color-alpha8", 24, 1}, {"grey-alpha16", 8, 0x23}, {"color-alpha16", 24, 0x23},
};

Bytes Png(const std::string& name) {
    return Seed("fuzz_png/" + name);
}

Bytes Without(Bytes file, std::string_view chunk) {
    const auto start = file.begin() + static_cast<ptrdiff_t>(Find(file, chunk)) - 4;
    file.erase(start, start + 12 + start[2] * 256 + start[3]);
    return file;
}

// As libpng's own short way unpacks them: 8-bit blue, green, red, alpha.
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

// The largest difference of any byte.
int Difference(const Bytes& some, const Bytes& other) {
    EXPECT_EQ(some.size(), other.size());
    int worst = 0;
    for (size_t i = 0; i < std::min(some.size(), other.size()); ++i)
        worst = std::max(worst, std::abs(some[i] - other[i]));
    return worst;
}

// The picture has `bitCount` bits and the pixels of `straight`, which is the same one without
// passes, over grey of level `behind`.
void ExpectReference(const png::PngDecoder& decoder, const Bytes& file, const Bytes& straight,
                     int bitCount, int behind, int tolerance = 1) {
    const Decoded decoded(decoder, file);
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.form.bitCount, bitCount);
    ASSERT_TRUE(decoded.target.View());
    const dib::BitmapInfoHeader header = decoded.target.View()->Header();
    EXPECT_EQ(header.bitCount, bitCount);
    EXPECT_EQ(header.xPelsPerMeter, 3937);
    EXPECT_EQ(header.yPelsPerMeter, 7874);
    Bytes expected = Reference(straight);
    for (size_t i = 0; i < expected.size(); ++i) {
        const int alpha = expected[i | 3];
        expected[i] = static_cast<uint8_t>((expected[i] * alpha + behind * (255 - alpha)) / 255);
        if (i % 4 == 3) expected[i] = 255;
    }
    EXPECT_LE(Difference(decoded.Pixels().bgra, expected), tolerance);
}

TEST_P(PngDecoder, ReadsEveryKind) {
    for (const Kind& kind : kKinds) {
        for (const char* interlaced : {"", "-interlaced"}) {
            SCOPED_TRACE(kind.name + interlaced);
            // 16-bit samples are cut by one, rounded by the other.
            const int tolerance = kind.name.ends_with("16") ? 3 : 1;
            Bytes file = Png(kind.name + interlaced), straight = Png(kind.name);
            ExpectReference(decoder_, file, straight, kind.bitCount, kind.behind, tolerance);
            for (const char* chunk : {"bKGD", "tRNS"}) {
                if (*chunk == 't' && kind.name.find("alpha") != std::string::npos) continue;
                file = Without(file, chunk);
                straight = Without(straight, chunk);
                ExpectReference(decoder_, file, straight, kind.bitCount, 255, tolerance);
            }
        }
    }
    const Bytes palette = Png("palette2-narrow-interlaced"),
                color = Png("color8-narrow-interlaced");
    ExpectReference(decoder_, palette, palette, 4, 255);
    ExpectReference(decoder_, color, color, 24, 255);
}

TEST_P(PngDecoder, HandsAlphaToThoseWhoTakeIt) {
    for (const char* name :
         {"grey1", "grey2-interlaced", "grey8", "grey16", "color8", "palette1-interlaced",
          "palette4", "palette8", "grey-alpha8", "color-alpha8-interlaced", "color-alpha16"}) {
        SCOPED_TRACE(name);
        const Bytes file = Png(name);
        const Decoded kept(decoder_, file, {}, true);
        ASSERT_EQ(kept.result, Result::kSuccess);
        ASSERT_TRUE(kept.target.View());
        EXPECT_EQ(kept.target.View()->Format(), dib::PixelFormat::kBgra32);
        const int tolerance = std::string_view(name).ends_with("16") ? 1 : 0;
        EXPECT_LE(Difference(kept.Pixels().bgra, Reference(file)), tolerance);
    }
}

TEST_P(PngDecoder, ShowsWhatAFileCutShortHolds) {
    for (const Kind& kind : kKinds) {
        for (const char* interlaced : {"", "-interlaced"}) {
            SCOPED_TRACE(kind.name + interlaced);
            const Bytes file = Without(Png(kind.name + interlaced), "bKGD");
            const Decoded whole(decoder_, file);
            EXPECT_EQ(whole.condition, Condition::kNone);
            // Nothing is missing yet: IEND and the data's check sum hold no pixels.
            EXPECT_EQ(Decoded(decoder_, Cut(file, file.size() - 14)).condition, Condition::kNone);
            const size_t start = Find(file, "IDAT") + 4;
            const Decoded decoded(decoder_, Cut(file, (start + file.size()) / 2));
            ASSERT_EQ(decoded.result, Result::kSuccess);
            EXPECT_EQ(decoded.condition, Condition::kDamaged);
            const Colors picture = decoded.Pixels();
            EXPECT_EQ(picture.At(0, 2), whole.Pixels().At(0, 2));
            if (*interlaced == '\0' && !kind.name.starts_with("palette")) {
                EXPECT_EQ(picture.At(picture.width - 1, picture.height - 1), 0xFFFFFFu);
            }
            EXPECT_EQ(Decoded(decoder_, Cut(file, start + 8)).result, Result::kBrokenData);
        }
    }
}

TEST_P(PngDecoder, ShowsWhatADamagedFileHolds) {
    for (const char* name : {"color8-large", "color8-large-interlaced"}) {
        const Bytes good = Png(name);
        const uint32_t color = Decoded(decoder_, good).Pixels().At(0, 8);
        // The check sum of the last data stands in front of the end chunk's 12 bytes, and in front
        // of it that of the stream, which nobody looks at.
        for (const size_t at : {good.size() / 2, good.size() - 13}) {
            const Decoded noise(decoder_, Damaged(good, at));
            ASSERT_EQ(noise.result, Result::kSuccess);
            EXPECT_EQ(noise.condition, Condition::kDamaged);
            EXPECT_EQ(noise.Pixels().At(0, 8), color);
        }
        // Another chunk in the middle of the data.
        const Decoded part(decoder_, With(good, Find(good, "IDAT", 20), 'X'));
        ASSERT_EQ(part.result, Result::kSuccess);
        EXPECT_EQ(part.condition, Condition::kDamaged);
        EXPECT_EQ(part.Pixels().At(0, 8), color);
        EXPECT_TRUE(part.Pixels().At(2999, 31) == 0xFFFFFFu || name[12] != '\0');
    }
}

TEST_P(PngDecoder, RefusesWhatItCannotShowAndStopsWhenTold) {
    const Bytes good = Png("color8");
    const std::pair<size_t, Result> damage[] = {
        {2, Result::kUnknownFormat},                    // signature
        {19, Result::kBrokenData},                      // width
        {Find(good, "IDAT") + 4, Result::kBrokenData},  // head of the pixels
        {good.size() - 1, Result::kSuccess},
    };
    for (const auto& [at, result] : damage)
        EXPECT_EQ(Decoded(decoder_, Damaged(good, at)).result, result) << at;

    // 60000 x 60000 pixels, with the right check sum.
    Bytes forged = good;
    const uint8_t header[] = {0, 0, 0xEA, 0x60, 0,    0,    0xEA, 0x60, 8,
                              2, 0, 0,    0,    0x0F, 0xB0, 0xE2, 0x15};
    std::copy(std::begin(header), std::end(header), forged.begin() + 16);
    const Decoded decoded(decoder_, forged);
    EXPECT_EQ(decoded.result, Result::kOutOfMemory);
    EXPECT_FALSE(decoded.target.View());

    const Bytes large = Png("color8-large");
    int calls = 0;
    const Decoded stopped(decoder_, large, Progress([&](int, int) { return ++calls < 2; }));
    EXPECT_EQ(stopped.result, Result::kAborted);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(ResultFromFailing(decoder_, large, 200), Result::kReadError);
}

// Wherever a file of several chunks is cut or damaged.
TEST(PngDecoderAhead, TellsTheSameAsThePlainOne) {
    const Bytes good = Png("color8-large");
    constexpr size_t kFirstRows = 350;
    for (size_t at = 30; at < good.size(); at += at < 60 ? 1 : 41) {
        for (const Bytes& file : {Cut(good, at), Damaged(good, at, 0x10)}) {
            const Decoded plain(kPlain, file);
            const Decoded ahead(kAhead, file);
            // Ahead, a few bytes more come out of what is there: that may be a first row.
            if (at < kFirstRows && plain.result != Result::kSuccess) continue;
            ASSERT_EQ(ahead.result, plain.result) << at;
            ASSERT_EQ(ahead.condition, plain.condition) << at;
            if (plain.result != Result::kSuccess) continue;
            const Colors expected = plain.Pixels(), picture = ahead.Pixels();
            const auto whole = static_cast<uint32_t>(at * picture.height / good.size());
            for (uint32_t y = 0; y + 8 < whole; ++y)
                ASSERT_EQ(picture.At(y, y), expected.At(y, y)) << at;
        }
    }
}

}  // namespace
}  // namespace tessary::codec::test
