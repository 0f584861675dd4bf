#include "helpers/jpeg_turn/jpeg_turn.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include "helpers/exif/exif_patch.h"
#include "helpers/jpeg_turn/jpeg_outline.h"
#include "tests/helpers/jpeg_turn/made_jpeg.h"

namespace tessary::jpeg {
namespace {

using namespace std::string_literals;
using test::Bytes;
using test::Pixels;

// As EXIF describes them: where the seen picture's first row and column are in the stored one.
Pixels Seen(const Pixels& stored, uint16_t orientation) {
    Pixels seen = stored;
    if (exif::SwapsSides(orientation)) std::swap(seen.width, seen.height);
    seen.bytes.clear();
    const uint32_t right = stored.width - 1, bottom = stored.height - 1;
    for (uint32_t y = 0; y < seen.height; ++y) {
        for (uint32_t x = 0; x < seen.width; ++x) {
            const uint32_t places[8][2] = {
                {x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                {y, x}, {y, bottom - x}, {right - y, bottom - x}, {right - y, x}};
            const auto& place = places[orientation - 1];
            const uint8_t* const pixel = stored.At(place[0], place[1]);
            seen.bytes.insert(seen.bytes.end(), pixel, pixel + stored.components);
        }
    }
    return seen;
}

Pixels Without(const Pixels& pixels, uint32_t left, uint32_t top) {
    Pixels cut{pixels.width - left, pixels.height - top, pixels.components};
    for (uint32_t y = top; y < pixels.height; ++y)
        cut.bytes.insert(cut.bytes.end(), pixels.At(left, y),
                         pixels.At(left, y) + cut.width * cut.components);
    return cut;
}

std::string Long(size_t value) {
    std::string text;
    for (int shift = 0; shift < 32; shift += 8)
        text += static_cast<char>(value >> shift);
    return text;
}

std::string Entry(unsigned tag, unsigned type, size_t value) {
    return Long(tag | type << 16) + Long(1) + Long(value);
}

// Orientation, a width, and a small picture.
test::Marker Exif(uint16_t orientation, uint32_t width, const Bytes& small) {
    std::string tiff = "II*\0"s + Long(8) + "\2\0"s + Entry(0x100, 4, width) +
                       Entry(0x112, 3, orientation) + Long(38);
    tiff += "\2\0"s + Entry(0x201, 4, 68) + Entry(0x202, 4, small.size()) + Long(0);
    return {0xE1, "Exif\0\0"s + tiff + std::string(small.begin(), small.end())};
}

std::span<uint8_t> Data(Bytes& file, uint8_t marker, size_t skipped) {
    const auto outline = OutlineOf(file);
    for (const Segment& segment : outline->segments)
        if (segment.marker == marker && segment.size > skipped)
            return std::span(file).subspan(segment.at + skipped, segment.size - skipped);
    return {};
}

TurnWish WishFor(const Pixels& shown, uint16_t orientation) {
    return {orientation, shown.width, shown.height, true};
}

TEST(JpegTurn, IsExactAndPutsRightWhatTheFileSaysOfIt) {
    const test::JpegKind kinds[] = {{3, 1, 1}, {3, 2, 2},       {3, 2, 1},
                                    {3, 1, 2}, {3, 4, 1},       {1},
                                    {4},       {3, 2, 2, true}, {3, 2, 1, false, true}};
    const Bytes small = test::MadeJpeg({}, 64, 32);
    const std::string xmp = "http://ns.adobe.com/xap/1.0/\0<a tiff:Orientation=\"6\"/>"s;
    const std::string others[] = {"ICC_PROFILE\0\1\1abc"s, "note"s};
    for (const test::JpegKind& kind : kinds) {
        for (uint16_t pair = 0; pair < 64; ++pair) {
            const auto marked = static_cast<uint16_t>(pair / 8 + 1);
            const auto turned = static_cast<uint16_t>(pair % 8 + 1);
            SCOPED_TRACE(testing::Message() << kind.components << kind.across << kind.down << ' '
                                            << marked << ' ' << turned);
            Bytes file = test::MadeJpeg(
                kind, 96, 64,
                {Exif(marked, 96, small), {0xE1, xmp}, {0xE2, others[0]}, {0xFE, others[1]}});
            const Pixels shown = Seen(test::DecodedJpeg(file), marked);
            file.insert(file.end(), {'t', 'a', 'i', 'l'});
            TurnedJpeg made = Turn(file, WishFor(shown, turned));
            ASSERT_LE(made.result, TurnResult::kMarked);
            const Pixels wanted = Seen(shown, turned);
            EXPECT_EQ(test::DecodedJpeg(made.file), wanted);
            EXPECT_TRUE(std::ranges::equal(std::span(made.file).last(4), "tail"s));
            const auto tiff = Data(made.file, 0xE1, 6);
            EXPECT_EQ(exif::ExifPatch(tiff).Orientation(), exif::kUpright);
            EXPECT_EQ(exif::TiffBlock(tiff).Long(18), wanted.width);
            const size_t size = *exif::TiffBlock(tiff).Long(60);
            const uint16_t whole = exif::Composed(marked, turned);
            EXPECT_EQ(test::DecodedJpeg(tiff.subspan(68, size)),
                      Seen(test::DecodedJpeg(small), whole));
            const std::string text(made.file.begin(), made.file.end());
            EXPECT_NE(text.find("tiff:Orientation=\"1\""), std::string::npos);
            for (const std::string& other : others)
                EXPECT_NE(text.find(other), std::string::npos);
        }
    }
}

TEST(JpegTurn, TrimsOnlyWhereThatIsWantedAndTellsTheEdges) {
    const Bytes file = test::MadeJpeg({3, 2, 2}, 75, 68);
    const Pixels shown = test::DecodedJpeg(file);
    const uint32_t lost[8][2] = {{0, 0}, {11, 0}, {11, 4}, {0, 4},
                                 {0, 0}, {4, 0},  {4, 11}, {0, 11}};
    for (uint16_t turned = 2; turned <= 8; ++turned) {
        TurnWish wish = WishFor(shown, turned);
        const auto [left, top] = lost[turned - 1];
        const bool isExact = left == 0 && top == 0;
        EXPECT_EQ(Turn(file, wish).result, isExact ? TurnResult::kTurned : TurnResult::kWouldTrim);
        wish.trims = true;
        const TurnedJpeg made = Turn(file, wish);
        ASSERT_EQ(made.result, TurnResult::kTurned);
        EXPECT_EQ(made.left, left);
        EXPECT_EQ(made.top, top);
        EXPECT_EQ(test::DecodedJpeg(made.file), Without(Seen(shown, turned), left, top)) << turned;
    }
    const Bytes narrow = test::MadeJpeg({3, 2, 2}, 9, 64);
    EXPECT_EQ(Turn(narrow, {exif::kMirrored, 9, 64, true, true}).result, TurnResult::kTooSmall);
}

TEST(JpegTurn, LosesNothingInAWholeRound) {
    for (const bool isProgressive : {false, true}) {
        const Bytes file = test::MadeJpeg({3, 2, 1, isProgressive, false, true}, 96, 48, {}, true);
        Bytes round = file;
        for (int i = 0; i < 4; ++i)
            round = Turn(round, WishFor(test::DecodedJpeg(round), exif::kTurnedRight)).file;
        EXPECT_EQ(test::DecodedJpeg(round), test::DecodedJpeg(file));
        EXPECT_EQ(OutlineOf(round)->segments.size(), OutlineOf(file)->segments.size());
        EXPECT_EQ(round.size(), file.size());
    }
}

TEST(JpegTurn, RefusesWhatIsNotWhole) {
    const Bytes small = test::MadeJpeg({}, 32, 32);
    const Bytes file = test::MadeJpeg({3, 2, 2, true}, 64, 32, {Exif(6, 64, small)}, true);
    const TurnWish wish{exif::kMirrored, 32, 64, true};
    ASSERT_EQ(Turn(file, wish).result, TurnResult::kTurned);
    for (size_t size = 0; size < file.size(); ++size)
        EXPECT_GT(Turn(std::span(file).first(size), wish).result, TurnResult::kMarked) << size;
    // Whatever a file says is survived.
    for (size_t at = 0; at < file.size(); ++at) {
        Bytes damaged = file;
        damaged[at] ^= 0xFF;
        const TurnedJpeg made = Turn(damaged, wish);
        EXPECT_EQ(made.file.empty(), made.result > TurnResult::kMarked);
    }
}

// They go with the first: its pixels stay where they are.
TEST(JpegTurn, MarksFilesWithFurtherPictures) {
    const test::Marker list{0xE2, "MPF\0list"s};
    Bytes file = test::MadeJpeg({}, 32, 24, {Exif(6, 32, {}), list});
    const Bytes more = test::MadeJpeg({}, 8, 8);
    file.insert(file.end(), more.begin(), more.end());
    TurnedJpeg made = Turn(file, {exif::kMirrored, 24, 32, true});
    ASSERT_EQ(made.result, TurnResult::kMarked);
    EXPECT_EQ(exif::ExifPatch(Data(made.file, 0xE1, 6)).Orientation(),
              exif::Composed(6, exif::kMirrored));
    exif::ExifPatch(Data(made.file, 0xE1, 6)).SetOrientation(6);
    EXPECT_EQ(made.file, file);
    Bytes bare = test::MadeJpeg({}, 32, 24, {list});
    bare.insert(bare.end(), more.begin(), more.end());
    EXPECT_EQ(Turn(bare, {exif::kMirrored, 32, 24, true}).result, TurnResult::kFurtherPictures);
}

// Of a decoder that nobody knows only swapped sides tell whether it has turned the picture.
TEST(JpegTurn, AsksHowTheShownPictureLies) {
    const auto result = [](uint16_t marked, uint32_t width, uint32_t height, bool followsFile) {
        const Bytes file = test::MadeJpeg({}, 32, 16, {Exif(marked, 32, {})});
        const TurnedJpeg made = Turn(file, {exif::kTurnedRight, width, height, followsFile});
        return made.result > TurnResult::kMarked ? 0U : test::DecodedJpeg(made.file).width;
    };
    EXPECT_EQ(result(6, 16, 32, true), 32u);
    EXPECT_EQ(result(6, 16, 32, false), 32u);
    EXPECT_EQ(result(6, 32, 16, false), 16u);
    EXPECT_EQ(result(1, 32, 16, false), 16u);
    EXPECT_EQ(result(3, 32, 16, true), 16u);
    EXPECT_EQ(result(3, 32, 16, false), 0u);  // who knows
    EXPECT_EQ(result(6, 32, 16, true), 0u);   // not this file
    EXPECT_EQ(result(1, 31, 16, true), 0u);
}

}  // namespace
}  // namespace tessary::jpeg
