#include "helpers/dib/bitmap_file.h"

#include <gtest/gtest.h>

#include "tests/helpers/dib/sample_bitmaps.h"

namespace tessary::dib::test {
namespace {

struct Decoded {
    DibError error = DibError::kNone;
    uint16_t bitCount = 0;
    std::string picture{};
    bool isWhole = false;
};

// Reads a whole file into blocks without slack, and checks that the result is plain.
Decoded ReadAll(ByteSource& source, const Progress& progress = {}) {
    BitmapFile file(source);
    Decoded decoded{file.Open()};
    if (decoded.error != DibError::kNone) return decoded;
    Bytes bits = JunkBlock(file.BitsSize());
    decoded.error = file.ReadBits(bits, progress);
    if (decoded.error != DibError::kNone) return decoded;
    const Bytes info(file.Info().begin(), file.Info().end());
    const auto view = DibView::Of(info, bits);
    if (!view || view->IsTopDown()) {
        ADD_FAILURE() << "not the plain form, bottom row first";
        return decoded;
    }
    return {decoded.error, view->Header().bitCount, Show(*view), file.IsWhole()};
}

Decoded ReadAll(const Bytes& file) {
    MemorySource source(file);
    return ReadAll(source);
}

Bytes Joined(Bytes first, const Bytes& second) {
    TestBitmap::Append(first, second.data(), second.size());
    return first;
}

const Bytes kArrayHeader = {'B', 'A', 40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

TEST(BitmapFile, ReadsEveryKind) {
    for (const Sample& sample : AllSamples()) {
        SCOPED_TRACE(sample.name);
        const Decoded decoded = ReadAll(sample.bitmap.File());
        EXPECT_EQ(decoded.error, DibError::kNone);
        EXPECT_EQ(decoded.picture, sample.picture);
        EXPECT_EQ(decoded.bitCount, sample.plainBits);
    }
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
        EXPECT_EQ(ReadAll(file).picture, "RG/BW") << &file - files;
}

TEST(BitmapFile, RefusesWithTheReason) {
    using T = TestBitmap;
    const struct {
        const char* name;
        DibError error;
        Bytes file;
    } cases[] = {
        {"empty", DibError::kNotABitmap, {}},
        {"icon", DibError::kNotABitmap, Joined({'I', 'C'}, T{2, 2, 24, k24Bits}.File())},
        {"empty array", DibError::kNotABitmap, kArrayHeader},
        {"array of arrays", DibError::kNotABitmap, Joined(kArrayHeader, kArrayHeader)},
        {"header of 0", DibError::kUnsupportedHeader, T{2, 2, 24, k24Bits, {}, 0}.File()},
        {"header of 13", DibError::kUnsupportedHeader, T{2, 2, 24, k24Bits, {}, 13}.File()},
        {"header of -1", DibError::kBitsTooShort, T{2, 2, 24, k24Bits, {}, ~0u}.File()},
        {"no masks", DibError::kTruncatedHeader, T{2, 2, 32, {}, {}, 40, 3}.File()},
        {"width 0", DibError::kBadDimensions, T{0, 2, 24, k24Bits}.File()},
        {"width -2", DibError::kBadDimensions, T{-2, 2, 24, k24Bits}.File()},
        {"height 0", DibError::kBadDimensions, T{2, 0, 24, k24Bits}.File()},
        {"least height", DibError::kBadDimensions, T{2, INT32_MIN, 24, k24Bits}.File()},
        {"48 bits", DibError::kUnsupportedDepth, T{2, 2, 48, k24Bits}.File()},
        {"JPEG", DibError::kUnsupportedCompression, T{2, 2, 24, k24Bits, {}, 40, 4}.File()},
        {"PNG", DibError::kUnsupportedCompression, T{2, 2, 24, k24Bits, {}, 40, 5}.File()},
        {"Huffman", DibError::kUnsupportedCompression, T{2, 2, 1, k1Bit, {}, 64, 3}.File()},
        {"OS/2 masks", DibError::kUnsupportedCompression, T{2, 2, 24, k24Bits, {}, 64, 3}.File()},
        {"RLE8 of 4", DibError::kUnsupportedCompression, T{2, 2, 4, k4Bits, {}, 40, 1}.File()},
        {"RLE4 of 8", DibError::kUnsupportedCompression, T{2, 2, 8, k8Bits, {}, 40, 2}.File()},
        {"masks of 8", DibError::kUnsupportedCompression, T{2, 2, 8, k8Bits, kRgbw, 40, 3}.File()},
        {"no pixels", DibError::kBitsTooShort, T{2, 2, 24, {}}.File()},
        {"offset -1", DibError::kBitsTooShort, T{2, 2, 24, k24Bits, {}, 40, 0, {}, {}, ~0u}.File()},
        {"largest", DibError::kTooLarge, T{INT32_MAX, INT32_MAX, 32, k32Bits}.File()},
        {"stride beyond 32 bits", DibError::kTooLarge, T{0x40000001, 4, 32, k32Bits}.File()},
        {"300 MB in 16 bytes", DibError::kTooLarge, T{10000, 10000, 24, k24Bits}.File()},
        {"100 MB of runs in 8 bytes", DibError::kTooLarge,
         T{10000, 10000, 8, k8Bits, {}, 40, 1}.File()},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ReadAll(c.file).error, c.error) << c.name;
}

TEST(BitmapFile, ShowsWhatIsLeftOfTruncatedRows) {
    const auto cut = [](TestBitmap bitmap, size_t bytes) {
        bitmap.pixels.resize(bitmap.pixels.size() - bytes);
        return ReadAll(bitmap.File()).picture;
    };
    EXPECT_EQ(cut({2, 2, 24, k24Bits}, 5), "R./BW");
    EXPECT_EQ(cut({2, -2, 24, k24Bits}, 5), "BW/R.");
    EXPECT_EQ(cut({2, 2, 16, k444, {}, 40, 3, {0xF00, 0xF0, 0xF}}, 2), "R./BW");
}

TEST(BitmapFile, TellsLinesThatWereLeftOutFromZerosInTheirPlace) {
    const auto isWhole = [](Bytes codes) {
        return ReadAll(TestBitmap{4, 3, 8, std::move(codes), kRgbw, 40, 1}.File()).isWhole;
    };
    const Bytes twoLinesLeftOut{4, 1, 0, 0, 0, 0, 0, 0};
    EXPECT_TRUE(isWhole(twoLinesLeftOut));
    EXPECT_TRUE(isWhole(Joined(twoLinesLeftOut, {0, 1, 0, 0, 0, 0})));
    EXPECT_TRUE(isWhole({4, 1, 0, 0, 4, 1, 0, 0, 4, 2, 0, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(isWhole(Joined(twoLinesLeftOut, Bytes(6))));
}

TEST(BitmapFile, AcceptsMuchPictureInManyRuns) {
    const Bytes file = TestBitmap{10000, 10000, 8, Bytes(10000 * 80), {}, 40, 1}.File();
    MemorySource source(file);
    EXPECT_EQ(BitmapFile(source).Open(), DibError::kNone);
}

// A file of any size made up on demand. It counts what is read, and may fail from some place on.
struct MadeUpSource final : ByteSource {
    MadeUpSource(Bytes startBytes, uint64_t fileSize, uint64_t failsFromByte = UINT64_MAX)
        : start(std::move(startBytes)), size(fileSize), failsFrom(failsFromByte) {}
    uint64_t Size() const override { return size; }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        const auto count = static_cast<size_t>(std::min<uint64_t>(into.size(), size - offset));
        if (offset + count > failsFrom) return std::nullopt;
        std::fill(into.begin(), into.end(), uint8_t{0});
        if (offset == 0) std::copy(start.begin(), start.end(), into.begin());
        bytesRead += count;
        return count;
    }
    Bytes start;
    uint64_t size;
    uint64_t failsFrom;
    uint64_t bytesRead = 0;
};

TEST(BitmapFile, ReadsOnceTellsProgressAndStops) {
    constexpr uint64_t kPixels = uint64_t{300} * 300 * 4;
    for (const auto& masks : {k888Masks, {0xFF, 0xFF00, 0xFF0000}}) {
        const Bytes start = TestBitmap{300, 300, 32, {}, {}, 40, 3, masks}.File();
        std::vector<int> percents;
        const Progress note = [&](int percent) {
            percents.push_back(percent);
            return true;
        };
        MadeUpSource endless(start, uint64_t{1} << 40);
        EXPECT_EQ(ReadAll(endless, note).bitCount, 32);
        EXPECT_LE(endless.bytesRead, kPixels + 200);
        EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
        ASSERT_FALSE(percents.empty());
        EXPECT_EQ(percents.back(), 100);

        MadeUpSource stopped(start, start.size() + kPixels);
        EXPECT_EQ(ReadAll(stopped, [](int) { return false; }).error, DibError::kAborted);
        EXPECT_LT(stopped.bytesRead, kPixels * 3 / 4);
        MadeUpSource broken(start, start.size() + kPixels, kPixels / 2);
        EXPECT_EQ(ReadAll(broken).error, DibError::kReadFailed);
        MadeUpSource unreadable(start, start.size() + kPixels, 0);
        EXPECT_EQ(ReadAll(unreadable).error, DibError::kReadFailed);
    }
    MadeUpSource large(TestBitmap{3000, 3000, 24, {}}.File(), uint64_t{1} << 30);
    BitmapFile file(large);
    EXPECT_EQ(file.Open(), DibError::kNone);
    Bytes bits(file.BitsSize());
    int told = 0;
    EXPECT_EQ(file.ReadBits(bits, [&](int) { return ++told > 0; }), DibError::kNone);
    EXPECT_GT(told, 50);
    EXPECT_LE(told, 101) << "no percent twice";
}

}  // namespace
}  // namespace tessary::dib::test
