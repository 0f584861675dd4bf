// What the system's decoders are not to see: headers that lie.
#include "plugins/iftesswic/safe_file.h"

#include "plugins/iftesswic/number_reader.h"
#include "plugins/iftesswic/tiff_file.h"
#include "tests/plugins_bundled/system_pictures.h"

namespace tessary::wic {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;
using namespace tessary::test;

struct Looked {
    explicit Looked(Bytes content, const SafeFile::Page& page = {})
        : bytes(std::move(content)),
          source(bytes),
          file(source, DetectContainer(std::span(bytes).first(22)), page) {}

    Result Verdict() const { return file.Found().result; }
    Condition Told() const { return file.Found().remark.condition; }
    uint32_t Number(uint64_t at) { return NumberReader(file.Source()).Long(at).value_or(0); }

    Bytes bytes;
    dib::MemorySource source;
    SafeFile file;
};

TEST(SafeFile, ShowsTheBestIconWhoseHeaderIsSound) {
    const Bytes icon = SystemPicture("icon");  // of 8, 16 and 12 pixels
    const auto header = [&](size_t picture) {
        const size_t offset = 6 + picture * 16 + 12;
        return static_cast<size_t>(icon[offset] | icon[offset + 1] << 8);
    };
    constexpr size_t kFirst = 22 + 4;  // where the width of the picture that is shown stands
    for (const int type : {1, 2}) {    // icon, cursor
        const Bytes good = With(icon, 2, static_cast<uint8_t>(type));
        Looked whole(good);
        EXPECT_EQ(whole.Told(), Condition::kNone);
        EXPECT_EQ(whole.Number(2), 0x00010001u);  // one icon
        EXPECT_EQ(whole.Number(kFirst), 16u);
        for (const uint32_t height : {0x80000000u, 0x40000000u, 0xC0000000u, 0u}) {
            Bytes bad = With(good, header(1) + 8, height, 4);
            Looked other(bad);
            ASSERT_EQ(other.Verdict(), Result::kSuccess);
            EXPECT_EQ(other.Told(), Condition::kDamaged);
            EXPECT_EQ(other.Number(kFirst), 12u);
            bad = With(With(bad, header(0) + 8, height, 4), header(2) + 8, height, 4);
            EXPECT_EQ(Looked(bad).Verdict(), Result::kBrokenData) << height;
        }
    }
    Looked smaller(Cut(icon, header(2) + 100));
    EXPECT_EQ(smaller.Number(kFirst), 16u);
    EXPECT_EQ(smaller.Told(), Condition::kNone);
    Looked part(Cut(icon, header(0) + 100));
    EXPECT_EQ(part.Told(), Condition::kDamaged);
    EXPECT_EQ(part.file.Source().Size(), 22u + 40 + 8 * 8 * 4 + 8 * 4);
}

TEST(SafeFile, FindsEachSizeOfAnIcon) {
    const Bytes icon = SystemPicture("icon");
    const auto sizes = [](const Bytes& file) {
        dib::MemorySource source(file);
        std::vector<uint32_t> found;
        for (uint32_t page = 0; page < CountIcons(source); ++page)
            found.push_back(Looked(file, {.icon = page}).Number(26));
        return found;
    };
    EXPECT_EQ(sizes(icon), (std::vector<uint32_t>{16, 12, 8}));
    const size_t second = static_cast<size_t>(icon[34] | icon[35] << 8);
    EXPECT_EQ(sizes(With(icon, second + 8, 0, 4)), (std::vector<uint32_t>{12, 8}));
    EXPECT_EQ(sizes(Cut(icon, second + 100)), (std::vector<uint32_t>{8, 16}));  // the whole one
    EXPECT_EQ(Looked(icon, {.icon = 3}).Verdict(), Result::kBrokenData);
}

TEST(SafeFile, FindsThePagesOfATiff) {
    // Directories of one entry behind the first, each leading to the next: a page, a smaller copy
    // of it, one in the old way, another page, and the first once more.
    Bytes file = SystemPicture("tiff");
    const auto first = static_cast<uint32_t>(file[4] | file[5] << 8);
    std::vector<uint32_t> at;
    for (const auto& [tag, value] : {std::pair{256, 9}, {254, 1}, {255, 2}, {254, 2}}) {
        at.push_back(static_cast<uint32_t>(file.size()));
        const size_t link = at.size() == 1 ? kTiffLink : file.size() - 4;
        file = With(std::move(file), link, at.back(), 4);
        file.resize(file.size() + 18);
        file = With(With(std::move(file), at.back(), 1), at.back() + 2, tag, 2);
        file = With(With(With(std::move(file), at.back() + 4, 4), at.back() + 6, 1), at.back() + 10,
                    value, 4);
    }
    const auto pages = [](const Bytes& bytes) {
        dib::MemorySource source(bytes);
        return TiffPages(source);
    };
    EXPECT_EQ(pages(file), (std::vector<uint32_t>{first, at[0], at[3]}));
    EXPECT_EQ(pages(With(file, file.size() - 4, at[0], 4)), pages(file));
    EXPECT_EQ(pages(SystemPicture("tiff")), std::vector<uint32_t>{first});
    EXPECT_TRUE(pages(Bytes(30)).empty());
    // The decoder sees that page alone.
    Looked page(file, {.directory = at[0]});
    EXPECT_EQ(page.Number(4), at[0]);
    EXPECT_EQ(page.Number(at[0] + 14), 0u);
}

TEST(SafeFile, ChecksTheCountsOfATiff) {
    const Bytes good = Tiff({{kTiffBits, 8}, {kTiffPhotometric, 1}});
    // The numbers become long ones.
    const auto changed = [&](std::initializer_list<std::pair<TiffEntry, uint32_t>> values,
                             size_t field) {
        Bytes file = good;
        for (const auto& [entry, value] : values)
            file = With(With(file, TiffAt(entry) + 2, 4), TiffAt(entry) + field, value, 4);
        return file;
    };
    constexpr size_t kCount = 4, kValue = 8;
    EXPECT_EQ(Looked(good).Told(), Condition::kNone);
    EXPECT_EQ(Looked(good).file.RowsPerStrip(), 2u);
    const Bytes forged[] = {
        changed({{kTiffHeight, 0x80000000u}, {kTiffRows, 1}}, kValue),  // so many strips
        changed({{kTiffHeight, 0x7FFFFFFFu}, {kTiffRows, 1}}, kValue),
        changed({{kTiffOffsets, 0x80000000u}, {kTiffSizes, 0x80000000u}}, kCount),
        changed({{kTiffWidth, 0x7FFFFFFFu}, {kTiffHeight, 0x7FFFFFFFu}}, kValue),
        changed({{kTiffWidth, 0}}, kValue),
        changed({{kTiffRows, 1}}, kValue),  // two strips of which one is listed
    };
    for (const Bytes& file : forged)
        EXPECT_EQ(Looked(file).Verdict(), Result::kBrokenData) << &file - forged;
    // A strip that the file has in part is no reason to show nothing.
    Looked part(changed({{kTiffSizes, 4000}}, kValue));
    EXPECT_EQ(part.Told(), Condition::kDamaged);
    EXPECT_EQ(part.Verdict(), Result::kSuccess);
    // Directories behind this one, or below it, are nobody's business: they may come in circles.
    Looked alone(With(With(good, kTiffLink, 12, 4), TiffAt(kTiffOrientation), 0x8769, 2));
    EXPECT_EQ(alone.Verdict(), Result::kSuccess);
    EXPECT_EQ(alone.Number(kTiffLink), 0u);
    EXPECT_EQ(alone.Number(TiffAt(kTiffOrientation)) >> 16, 1u);  // a byte
    for (size_t size = 22; size < good.size() - 4; ++size)
        ASSERT_EQ(Looked(Cut(good, size)).Verdict(), Result::kBrokenData) << size;
}

TEST(SafeFile, LetsOnlyKnownKindsOfDdsThrough) {
    constexpr size_t kHeight = 12, kCopies = 28, kName = 84, kFormat = 128;
    const Bytes named = SystemPicture("dxt1.dds"), numbered = SystemPicture("dx10.dds");
    EXPECT_EQ(Looked(named).Told(), Condition::kNone);
    Looked srgb(numbered);
    EXPECT_EQ(srgb.Told(), Condition::kNone);
    EXPECT_EQ(srgb.Number(kFormat), 71u);
    EXPECT_EQ(Looked(With(named, kName, 0x32495441, 4)).Told(), Condition::kKindNotRead);  // ATI2
    EXPECT_EQ(Looked(With(numbered, kFormat, 98)).Verdict(), Result::kUnknownFormat);
    const Bytes cut = Cut(With(named, kCopies, 0x7FFFFFFF, 4), named.size() - 8);
    Looked part(cut);
    EXPECT_EQ(part.Told(), Condition::kDamaged);
    EXPECT_EQ(part.file.Source().Size(), named.size());
    EXPECT_EQ(part.Number(kCopies), 0u);
    EXPECT_EQ(Looked(With(cut, kHeight, 0x40000000, 4)).Verdict(), Result::kBrokenData);
}

}  // namespace
}  // namespace tessary::wic
