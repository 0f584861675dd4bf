// Bitmaps of every kind, in files and as pairs of blocks, become plain pictures or are refused.
#include "helpers/dib/bitmap_file.h"
#include "helpers/dib/check_dib.h"
#include "tests/helpers/dib/sample_bitmaps.h"

namespace tessary::dib::test {
namespace {

using enum DibError;

struct Outcome {
    DibError error = kNone;
    std::string picture{};
    uint16_t bitCount = 0;
    bool isWhole = true;     // only of files
    bool keepsInfo = false;  // only of pairs, as the next
    bool keepsBits = false;
};

// Reads a whole file into blocks without slack.
Outcome Read(const Bytes& bytes) {
    MemorySource source(bytes);
    BitmapFile file(source);
    if (const DibError error = file.Open(); error != kNone) return {error};
    Bytes bits = JunkBlock(file.BitsSize());
    if (const DibError error = file.ReadBits(bits, {}); error != kNone) return {error};
    const Bytes info(file.Info().begin(), file.Info().end());
    const DibView view = DibView::Of(info, bits).value();
    EXPECT_FALSE(view.IsTopDown());
    return {kNone, Show(view), view.Header().bitCount, file.IsWhole()};
}

// The verdict on a pair, and the picture that a host then has.
Outcome Check(const TestBitmap& bitmap) {
    const Bytes info = bitmap.Info();
    const CheckedDib checked = CheckDib(info, bitmap.pixels);
    if (checked.Error() != kNone) return {checked.Error()};
    const Bytes newInfo(checked.Info().begin(), checked.Info().end());
    Bytes newBits = JunkBlock(checked.BitsSize());
    if (!checked.KeepsBits()) checked.WriteBits(newBits);
    const DibView view = DibView::Of(checked.KeepsInfo() ? info : newInfo,
                                     checked.KeepsBits() ? bitmap.pixels : newBits)
                             .value();
    return {kNone, Show(view),          view.Header().bitCount,
            true,  checked.KeepsInfo(), checked.KeepsBits()};
}

Bytes Joined(Bytes first, const Bytes& second) {
    TestBitmap::Append(first, second.data(), second.size());
    return first;
}

const Bytes kArrayHeader = {'B', 'A', 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

TEST(DibTest, MakesEveryKindPlainAndCopiesNoMoreThanItMust) {
    for (const Sample& sample : AllSamples()) {
        SCOPED_TRACE(sample.name);
        const Outcome pair = Check(sample.bitmap);
        EXPECT_EQ(pair.keepsBits, sample.keepsBits);
        for (const Outcome& made : {pair, Read(sample.bitmap.File())}) {
            EXPECT_EQ(made.picture, sample.picture);
            EXPECT_EQ(made.bitCount, sample.plainBits);
        }
    }
}

TEST(DibTest, RefusesWithTheReason) {
    const struct {
        const char* name;
        TestBitmap bitmap;
        DibError ofFile;
        DibError ofPair = kNone;  // the same when not set
    } cases[] = {
        {"header of 0", {2, 2, 24, k24Bits, {}, 0}, kUnsupportedHeader},
        {"header of 13", {2, 2, 24, k24Bits, {}, 13}, kUnsupportedHeader},
        {"header of 5000", {2, 2, 24, k24Bits, {}, 5000}, kBitsTooShort, kTruncatedHeader},
        {"header of -1", {2, 2, 24, k24Bits, {}, ~0u}, kBitsTooShort, kTruncatedHeader},
        {"no masks", {2, 2, 32, {}, {}, 40, 3}, kTruncatedHeader},
        {"width 0", {0, 2, 24, k24Bits}, kBadDimensions},
        {"width -2", {-2, 2, 24, k24Bits}, kBadDimensions},
        {"height 0", {2, 0, 24, k24Bits}, kBadDimensions},
        {"least height", {2, INT32_MIN, 24, k24Bits}, kBadDimensions},
        {"48 bits", {2, 2, 48, k24Bits}, kUnsupportedDepth},
        {"JPEG", {2, 2, 24, k24Bits, {}, 40, 4}, kUnsupportedCompression},
        {"PNG", {2, 2, 24, k24Bits, {}, 40, 5}, kUnsupportedCompression},
        {"Huffman", {2, 2, 1, k1Bit, {}, 64, 3}, kUnsupportedCompression},
        {"OS/2 masks", {2, 2, 24, k24Bits, {}, 64, 3}, kUnsupportedCompression},
        {"RLE8 of 4", {2, 2, 4, k4Bits, {}, 40, 1}, kUnsupportedCompression},
        {"RLE4 of 8", {2, 2, 8, k8Bits, {}, 40, 2}, kUnsupportedCompression},
        {"masks of 8", {2, 2, 8, k8Bits, kRgbw, 40, 3}, kUnsupportedCompression},
        {"no pixels", {2, 2, 24, {}}, kBitsTooShort},
        {"offset -1", {2, 2, 24, {}, {}, 40, 0, {}, {}, ~0u}, kBitsTooShort},
        // A file may be cut short; of a pair the host knows the size.
        {"5 bytes less", {2, 2, 24, Bytes(11)}, kNone, kBitsTooShort},
        {"neither padded nor tight", {1, 8, 24, Bytes(28)}, kNone, kBitsTooShort},
        {"500 MB in 8 bytes", {0x8000, 0x4000, 8, k8Bits}, kTooLarge, kBitsTooShort},
        {"4 GB", {0x10000, 0x10000, 8, k8Bits}, kTooLarge},
        {"largest", {INT32_MAX, INT32_MAX, 32, k32Bits}, kTooLarge},
        {"stride beyond 32 bits", {0x40000001, 4, 32, k32Bits}, kTooLarge},
        {"100 MB of runs in 8 bytes", {10000, 10000, 8, k8Bits, {}, 40, 1}, kTooLarge},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Read(c.bitmap.File()).error, c.ofFile) << c.name;
        EXPECT_EQ(Check(c.bitmap).error, c.ofPair == kNone ? c.ofFile : c.ofPair) << c.name;
    }
    const Bytes icon = Joined({'I', 'C'}, TestBitmap{2, 2, 24, k24Bits}.File());
    for (const Bytes& file : {Bytes(), icon, kArrayHeader, Joined(kArrayHeader, kArrayHeader)})
        EXPECT_EQ(Read(file).error, kNotABitmap) << file.size();
    // As much picture, in as many runs as it takes.
    const Bytes runs = TestBitmap{10000, 10000, 8, Bytes(10000 * 80), {}, 40, 1}.File();
    MemorySource source(runs);
    EXPECT_EQ(BitmapFile(source).Open(), kNone);
}

TEST(CheckDib, KeepsTheInfoBlockOnlyOfPlainPairs) {
    for (const TestBitmap& plain :
         {TestBitmap{2, -2, 24, k24Bits}, TestBitmap{2, 2, 16, k565, {}, 40, 3, k565Masks},
          TestBitmap{2, 2, 8, k8Bits, kRgbw}, TestBitmap{2, 2, 1, k1Bit, {0xFF0000, 0xFF}}}) {
        SCOPED_TRACE(plain.bitCount);
        EXPECT_TRUE(Check(plain).keepsInfo);
        TestBitmap noPlanes = plain;
        noPlanes.planes = 0;
        TestBitmap badCount = plain;
        badCount.colorsUsed = 257;
        TestBitmap longer = plain;
        longer.headerSize = 108;
        for (const TestBitmap& changed : {noPlanes, badCount, longer}) {
            const Outcome outcome = Check(changed);
            EXPECT_FALSE(outcome.keepsInfo);
            EXPECT_TRUE(outcome.keepsBits);
            EXPECT_EQ(outcome.picture, Check(plain).picture);
        }
    }
}

TEST(CheckDib, TakesRowsAsTheyLie) {
    const Bytes tight = {255, 0, 0, 255, 255, 255, 0, 0, 255, 0, 255, 0};
    const Bytes lastPaddingMissing(k24Bits.begin(), k24Bits.end() - 2);
    EXPECT_EQ(Check({2, 2, 24, tight}).picture, "RG/BW");
    EXPECT_EQ(Check({2, -2, 24, Joined(tight, {99})}).picture, "BW/RG");
    EXPECT_EQ(Check({2, 2, 2, {0xB0, 0x10}, kRgbw}).picture, "RG/BW");
    EXPECT_EQ(Check({2, 2, 24, lastPaddingMissing}).picture, "RG/BW");
}

TEST(BitmapFile, FindsThePixels) {
    using T = TestBitmap;
    const Bytes gap(5, 0x77);
    const Bytes files[] = {
        T{2, 2, 8, Joined(gap, k8Bits), kRgbw, 40, 0, {}, {}, 14 + 40 + 16 + 5}.File(),
        T{2, 2, 8, k8Bits, kRgbw, 40, 0, {}, {}, 0}.File(),
        // Into the table: too early by writers that forget it, or with colours left out.
        T{2, 2, 8, k8Bits, kRgbw, 40, 0, {}, {}, 54}.File(),
        T{2, 2, 4, k4Bits, kRgbw, 40, 0, {}, {}, 60}.File(),
        T{2, 2, 8, {1, 2, 1, 3, 0, 0, 1, 0, 1, 1, 0, 1}, kRgbw, 40, 1, {}, {}, 54}.File(),
        T{2, 2, 8, k8Bits, kRgbw, 40, 0, {}, 256}.File(),
        T{2, 2, 24, k24Bits, kRgbw, 40, 0, {}, {}, 20}.File(),
        T{2, 2, 32, k32Bits, {}, 40, 3, k888Masks, {}, 54}.File(),
        Joined(kArrayHeader, T{2, 2, 24, k24Bits, {}, 12, 0, {}, {}, 14 + 14 + 12}.File()),
    };
    for (const Bytes& file : files)
        EXPECT_EQ(Read(file).picture, "RG/BW") << &file - files;
}

TEST(BitmapFile, ShowsWhatIsLeftOfTruncatedRows) {
    const auto cut = [](TestBitmap bitmap, size_t bytes) {
        bitmap.pixels.resize(bitmap.pixels.size() - bytes);
        return Read(bitmap.File()).picture;
    };
    EXPECT_EQ(cut({2, 2, 24, k24Bits}, 5), "R./BW");
    EXPECT_EQ(cut({2, -2, 24, k24Bits}, 5), "BW/R.");
    EXPECT_EQ(cut({2, 2, 16, k444, {}, 40, 3, {0xF00, 0xF0, 0xF}}, 2), "R./BW");
}

TEST(BitmapFile, TellsLinesThatWereLeftOutFromZerosInTheirPlace) {
    const auto isWhole = [](Bytes codes) {
        return Read(TestBitmap{4, 3, 8, std::move(codes), kRgbw, 40, 1}.File()).isWhole;
    };
    const Bytes twoLinesLeftOut{4, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(isWhole(twoLinesLeftOut));
    EXPECT_TRUE(isWhole(Joined(twoLinesLeftOut, {0, 1, 0, 0, 0, 0})));
    EXPECT_TRUE(isWhole({4, 1, 0, 0, 4, 1, 0, 0, 4, 2, 0, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(isWhole(Joined(twoLinesLeftOut, Bytes(6))));
}

}  // namespace
}  // namespace tessary::dib::test
