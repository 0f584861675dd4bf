// What iftesswebp.spi makes of WebP files.
#include "plugins/iftesswebp/webp_decoder.h"

#include <string_view>

#include "helpers/color/color_profile.h"
#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/seeds.h"

namespace tessary::webp {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;
using namespace tessary::test;

const WebpDecoder kDecoder;

// "lossless", "lossless-alpha" and "lossy" are of this size, and the first two of these colours.
constexpr uint32_t kWidth = 16, kHeight = 12;
constexpr uint32_t ColorAt(uint32_t x, uint32_t y) {
    return x * 16 << 16 | y * 20 << 8 | 128;
}
// In "lossless-alpha" it is clear there.
constexpr bool IsClear(uint32_t x, uint32_t y) {
    return x < 8 && y < 6;
}

void AppendNumber(Bytes& bytes, uint32_t value, unsigned size) {
    for (unsigned i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> 8 * i));
}

void AppendChunk(Bytes& file, std::string_view name, std::span<const uint8_t> data) {
    file.insert(file.end(), name.begin(), name.end());
    AppendNumber(file, static_cast<uint32_t>(data.size()), 4);
    file.insert(file.end(), data.begin(), data.end());
    if (data.size() % 2 != 0) file.push_back(0);
}

// The plain file `picture` with a profile and EXIF data around its chunk.
Bytes Extended(const Bytes& picture, std::span<const uint8_t> icc, std::span<const uint8_t> exif) {
    constexpr uint8_t kHasProfile = 0x20, kHasExif = 0x08;
    Bytes chunks{'W', 'E', 'B', 'P'};
    Bytes head{
        static_cast<uint8_t>((icc.empty() ? 0 : kHasProfile) | (exif.empty() ? 0 : kHasExif)), 0, 0,
        0};
    AppendNumber(head, kWidth - 1, 3);
    AppendNumber(head, kHeight - 1, 3);
    AppendChunk(chunks, "VP8X", head);
    if (!icc.empty()) AppendChunk(chunks, "ICCP", icc);
    chunks.insert(chunks.end(), picture.begin() + 12, picture.end());
    if (!exif.empty()) AppendChunk(chunks, "EXIF", exif);
    Bytes file{'R', 'I', 'F', 'F'};
    AppendNumber(file, static_cast<uint32_t>(chunks.size()), 4);
    file.insert(file.end(), chunks.begin(), chunks.end());
    return file;
}

TEST(WebpDecoder, DecodesStillPicturesWithTheirAlpha) {
    for (const bool takesAlpha : {false, true}) {
        const Decoded decoded(kDecoder, Seed("fuzz_webp/lossless-alpha"), {}, takesAlpha);
        ASSERT_EQ(decoded.result, Result::kSuccess);
        EXPECT_EQ(decoded.condition, Condition::kNone);
        EXPECT_EQ(decoded.form.bitCount, 24);
        const Colors pixels = decoded.Pixels();
        ASSERT_EQ(pixels.width, kWidth);
        ASSERT_EQ(pixels.height, kHeight);
        for (uint32_t y = 0; y < kHeight; ++y) {
            for (uint32_t x = 0; x < kWidth; ++x) {
                const bool isWhite = !takesAlpha && IsClear(x, y);
                ASSERT_EQ(pixels.At(x, y), isWhite ? 0xFFFFFF : ColorAt(x, y)) << x << ' ' << y;
                ASSERT_EQ(pixels.Channel(x, y, 3), takesAlpha && IsClear(x, y) ? 0 : 0xFF);
            }
        }
    }
    const Colors lossy = Decoded(kDecoder, Seed("fuzz_webp/lossy")).Pixels();
    EXPECT_NEAR(lossy.Channel(8, 6, 2), 128, 12);
    EXPECT_NEAR(lossy.Channel(8, 6, 1), 120, 12);
    EXPECT_NEAR(lossy.Channel(8, 6, 0), 128, 12);
}

TEST(WebpDecoder, TurnsAndConvertsAsTheFileSays) {
    const Bytes plain = Seed("fuzz_webp/lossless");
    // Orientation 6: the stored rows are columns from the right.
    const Bytes exif{'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3,
                     0,   1,   0,  0, 0, 6, 0, 0, 0, 0, 0,    0, 0};
    const Decoded turned(kDecoder, Extended(plain, {}, exif));
    ASSERT_EQ(turned.result, Result::kSuccess);
    EXPECT_EQ(turned.form.width, kHeight);
    const Colors pixels = turned.Pixels();
    for (uint32_t y = 0; y < kHeight; ++y) {
        for (uint32_t x = 0; x < kWidth; ++x)
            ASSERT_EQ(pixels.At(kHeight - 1 - y, x), ColorAt(x, y));
    }
    // Light as it is: half of it is 188 in sRGB.
    const auto linear = color::Profile::FromPrimaries(color::kSrgbPrimaries, {1.0});
    const Decoded converted(kDecoder, Extended(plain, linear->Icc(), {}));
    ASSERT_EQ(converted.result, Result::kSuccess);
    EXPECT_NEAR(converted.Pixels().Channel(8, 0, 2), 188, 1);
    EXPECT_NEAR(converted.Pixels().Channel(8, 0, 0), 188, 1);
}

TEST(WebpDecoder, PlaysAnimations) {
    const Bytes file = Seed("fuzz_webp/animated");
    dib::MemorySource source(file);
    const auto frames = kDecoder.OpenFrames(source);
    ASSERT_NE(frames, nullptr);
    EXPECT_EQ(frames->Frames().count, 3u);
    EXPECT_EQ(frames->Frames().rounds, 3u);
    constexpr std::array<uint32_t, 3> kTimes{100, 50, 70};
    for (const uint32_t index : {2u, 0u, 1u}) {
        MemoryTarget target(SIZE_MAX, true);
        codec::Progress nobody;
        uint32_t duration = 0;
        ASSERT_EQ(frames->Decode(source, index, target, nobody, duration), Result::kSuccess);
        EXPECT_EQ(duration, kTimes[index]);
        const Colors pixels(target.View().value());
        EXPECT_EQ(pixels.At(15, 11), ColorAt(15, 11)) << index;
        if (index == 1) {
            // Red at (4, 2), 8 x 6 pixels, the right half of it half transparent.
            EXPECT_EQ(pixels.At(5, 3), 0xFF0000u);
            EXPECT_NEAR(pixels.Channel(9, 3, 2), (255 * 128 + 144 * 127) / 255, 1);
            EXPECT_EQ(pixels.At(3, 2), ColorAt(3, 2));
        } else if (index == 2) {
            // That is gone, and green stands at (2, 4) whose left half is clear, not blended.
            EXPECT_EQ(pixels.Channel(8, 3, 3), 0);
            EXPECT_EQ(pixels.Channel(2, 5, 3), 0);
            EXPECT_EQ(pixels.At(5, 5), 0x00FF00u);
            EXPECT_EQ(pixels.At(3, 2), ColorAt(3, 2));
        }
    }
    EXPECT_EQ(Decoded(kDecoder, file).Pixels().At(5, 3), ColorAt(5, 3));
}

TEST(WebpDecoder, ShowsWhatADamagedFileHolds) {
    const Bytes good = Seed("fuzz_webp/lossy");
    bool hasPart = false;
    for (size_t size = 0; size < good.size(); ++size) {
        const Decoded cut(kDecoder, Bytes(good.begin(), good.begin() + static_cast<int>(size)));
        if (cut.result != Result::kSuccess) continue;
        hasPart = true;
        EXPECT_EQ(cut.condition, Condition::kDamaged) << size;
    }
    EXPECT_TRUE(hasPart);
    // A frame that is missing at the end.
    Bytes animation = Seed("fuzz_webp/animated");
    animation.resize(animation.size() - 10);
    EXPECT_EQ(Decoded(kDecoder, animation).condition, Condition::kDamaged);
    EXPECT_EQ(ResultFromFailing(kDecoder, good, 20), Result::kReadError);
    EXPECT_EQ(Decoded(kDecoder, good, codec::Progress([](int, int) { return false; })).result,
              Result::kAborted);
}

}  // namespace
}  // namespace tessary::webp
