// What the system's decoders are not to see: headers that lie.
#include "plugins/iftesswic/safe_file.h"

#include <gtest/gtest.h>

#include "plugins/iftesswic/number_reader.h"
#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::wic {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;
using Bytes = std::vector<uint8_t>;

struct Looked {
    explicit Looked(Bytes content)
        : bytes(std::move(content)),
          source(bytes),
          file(source, DetectContainer(std::span(bytes).first(22))) {}

    Result Verdict() const { return file.Found().result; }
    Condition Told() const { return file.Found().remark.condition; }
    uint32_t Number(uint64_t at) { return NumberReader(file.Source()).Long(at).value_or(0); }

    Bytes bytes;
    dib::MemorySource source;
    SafeFile file;
};

void Set(Bytes& file, size_t at, uint32_t value, size_t count = 4) {
    for (size_t i = 0; i < count; ++i)
        file[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

TEST(SafeFile, ShowsTheBestIconWhoseHeaderIsSound) {
    const auto headerOf = [](const Bytes& file, size_t picture) {
        const size_t offset = kIconEntry + picture * kIconEntrySize + kIconOffset;
        return static_cast<size_t>(file[offset] | file[offset + 1] << 8);
    };
    for (const uint32_t type : {1u, 2u}) {
        const Bytes good = MakeIcon(type);
        Looked whole(good);
        EXPECT_EQ(whole.Told(), Condition::kNone);
        EXPECT_EQ(whole.Number(2), 0x00010001u);  // one icon
        EXPECT_EQ(whole.Number(22 + 4), 32u);
        for (const uint32_t height : {0x80000000u, 0x40000000u, 0xC0000000u, 0u}) {
            Bytes bad = good;
            Set(bad, headerOf(bad, 1) + kIconHeight, height);
            Looked other(bad);
            ASSERT_EQ(other.Verdict(), Result::kSuccess);
            EXPECT_EQ(other.Told(), Condition::kDamaged);
            EXPECT_EQ(other.Number(22 + 4), 24u);
            for (const size_t picture : {0, 2})
                Set(bad, headerOf(bad, picture) + kIconHeight, height);
            EXPECT_EQ(Looked(bad).Verdict(), Result::kBrokenData) << height;
        }
    }
    Bytes cut = MakeIcon(1);
    cut.resize(headerOf(cut, 2) + 100);
    Looked smaller(cut);
    EXPECT_EQ(smaller.Number(22 + 4), 32u);
    EXPECT_EQ(smaller.Told(), Condition::kNone);
    cut.resize(headerOf(cut, 0) + 100);
    Looked part(cut);
    EXPECT_EQ(part.Told(), Condition::kDamaged);
    EXPECT_EQ(part.file.Source().Size(), 22u + 40 + 16 * 16 * 4 + 16 * 4);
}

TEST(SafeFile, ChecksTheCountsOfATiff) {
    const Bytes good = MakeTiff(16, 2, 8, 1, 1, 0);
    const auto entry = [](size_t number) { return kTiffEntries + number * kTiffEntrySize; };
    const auto changed = [&](std::initializer_list<std::array<uint32_t, 2>> values) {
        Bytes file = good;
        for (const auto& [at, value] : values) {
            if ((at - kTiffEntries) % kTiffEntrySize == 8) file[at - 6] = 4;  // a long one
            Set(file, at, value);
        }
        return file;
    };
    const auto value = [&](size_t number) { return static_cast<uint32_t>(entry(number) + 8); };
    const auto count = [&](size_t number) { return static_cast<uint32_t>(entry(number) + 4); };
    EXPECT_EQ(Looked(good).Told(), Condition::kNone);
    EXPECT_EQ(Looked(good).file.RowsPerStrip(), 2u);
    const Bytes forged[] = {
        changed({{value(1), 0x80000000u}, {value(8), 1}}),  // so many strips
        changed({{value(1), 0x7FFFFFFFu}, {value(8), 1}}),
        changed({{count(5), 0x80000000u}, {count(9), 0x80000000u}}),
        changed({{value(0), 0x7FFFFFFFu}, {value(1), 0x7FFFFFFFu}}),
        changed({{value(0), 0}}),
        changed({{value(8), 1}}),  // two strips of which one is listed
    };
    for (const Bytes& file : forged)
        EXPECT_EQ(Looked(file).Verdict(), Result::kBrokenData) << &file - forged;
    // A strip that the file has in part is no reason to show nothing.
    EXPECT_EQ(Looked(changed({{value(9), 4000}})).Told(), Condition::kDamaged);
    EXPECT_EQ(Looked(changed({{value(9), 4000}})).Verdict(), Result::kSuccess);
    // Directories behind this one, or below it, are nobody's business: they may come in circles.
    Bytes linked = good;
    Set(linked, kTiffLink, 12);
    Set(linked, entry(6), 0x8769, 2);
    Looked alone(linked);
    EXPECT_EQ(alone.Verdict(), Result::kSuccess);
    EXPECT_EQ(alone.Number(kTiffLink), 0u);
    EXPECT_EQ(alone.Number(entry(6)) >> 16, 1u);  // a byte
    for (size_t size = 22; size < good.size() - 4; ++size) {
        const Bytes cut(good.begin(), good.begin() + static_cast<ptrdiff_t>(size));
        ASSERT_EQ(Looked(cut).Verdict(), Result::kBrokenData) << size;
    }
}

TEST(SafeFile, LetsOnlyKnownKindsOfDdsThrough) {
    EXPECT_EQ(Looked(MakeDds(16, "DXT1", 0)).Told(), Condition::kNone);
    Looked srgb(MakeDds(16, "DX10", 72));
    EXPECT_EQ(srgb.Told(), Condition::kNone);
    EXPECT_EQ(srgb.Number(128), 71u);
    EXPECT_EQ(Looked(MakeDds(16, "ATI2", 0)).Told(), Condition::kKindNotRead);
    EXPECT_EQ(Looked(MakeDds(16, "DX10", 98)).Verdict(), Result::kUnknownFormat);
    Bytes cut = MakeDds(16, "DXT1", 0);
    Set(cut, 28, 0x7FFFFFFF);  // smaller copies
    cut.resize(cut.size() - 8);
    Looked part(cut);
    EXPECT_EQ(part.Told(), Condition::kDamaged);
    EXPECT_EQ(part.file.Source().Size(), cut.size() + 8);
    EXPECT_EQ(part.Number(28), 0u);
    Set(cut, 12, 0x40000000);
    EXPECT_EQ(Looked(cut).Verdict(), Result::kBrokenData);
}

TEST(SafeFile, CountsThePixelsOfAGif) {
    const Bytes good = MakeGif();
    EXPECT_EQ(Looked(good).Told(), Condition::kNone);
    // The first frame is whole; so is the picture.
    EXPECT_EQ(Looked(Bytes(good.begin(), good.end() - 20)).Told(), Condition::kNone);
    const auto firstEnd = good.begin() + kGifFirstPixels + 2 + 0x44;
    EXPECT_EQ(Looked(Bytes(good.begin(), firstEnd)).Told(), Condition::kNone);
    EXPECT_EQ(Looked(Bytes(good.begin(), firstEnd - 3)).Told(), Condition::kDamaged);
    Bytes higher = good;  // by one row, of which there are no pixels
    ++higher[kGifFrame + 6];
    EXPECT_EQ(Looked(higher).Told(), Condition::kDamaged);
    Bytes noPixel = good;
    noPixel[kGifFirstPixels + 2] = 7;
    EXPECT_EQ(Looked(noPixel).Verdict(), Result::kBrokenData);
    Set(higher, kGifScreen, 0xFFFFFFFF);
    EXPECT_EQ(Looked(higher).Verdict(), Result::kBrokenData);
}

}  // namespace
}  // namespace tessary::wic
