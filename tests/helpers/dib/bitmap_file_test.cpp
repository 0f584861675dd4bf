#include "helpers/dib/bitmap_file.h"

#include <gtest/gtest.h>

#include "tests/helpers/dib/sample_bitmaps.h"

namespace tessary::dib::test {
namespace {

struct Decoded {
    DibError error = DibError::kNone;
    uint16_t bitCount = 0;
    std::string picture{};
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
    return {decoded.error, view->Header().bitCount, Show(*view)};
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
        {"array of arrays", DibError::kNotABitmap, Joined(kArrayHeader, kArrayHeader)},
        {"header of -1", DibError::kBitsTooShort, T{2, 2, 24, k24Bits, {}, ~0u}.File()},
        {"no masks", DibError::kTruncatedHeader, T{2, 2, 32, {}, {}, 40, 3}.File()},
        {"width 0", DibError::kBadDimensions, T{0, 2, 24, k24Bits}.File()},
        {"least height", DibError::kBadDimensions, T{2, INT32_MIN, 24, k24Bits}.File()},
        {"JPEG", DibError::kUnsupportedCompression, T{2, 2, 24, k24Bits, {}, 40, 4}.File()},
        {"RLE8 of 4", DibError::kUnsupportedCompression, T{2, 2, 4, k4Bits, {}, 40, 1}.File()},
        {"largest", DibError::kTooLarge, T{INT32_MAX, INT32_MAX, 32, k32Bits}.File()},
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

// An endless file, black behind its start, that cannot be read from some place on.
struct EndlessSource final : ByteSource {
    uint64_t Size() const override { return uint64_t{1} << 40; }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        if (offset + into.size() > failsFrom) return std::nullopt;
        std::fill(into.begin(), into.end(), uint8_t{0});
        if (offset == 0) std::copy(start.begin(), start.end(), into.begin());
        return into.size();
    }
    Bytes start = TestBitmap{300, 300, 32, {}}.File();
    uint64_t failsFrom = 300 * 300 * 4 + 200;
};

TEST(BitmapFile, ReadsNoFurtherThanItMustAndStops) {
    EndlessSource source;
    EXPECT_EQ(ReadAll(source).bitCount, 32);
    EXPECT_EQ(ReadAll(source, [](int) { return false; }).error, DibError::kAborted);
    source.failsFrom /= 2;
    EXPECT_EQ(ReadAll(source).error, DibError::kReadFailed);
}

}  // namespace
}  // namespace tessary::dib::test
