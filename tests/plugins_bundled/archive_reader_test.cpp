#include "plugins/axtessarc/archive_format.h"
#include "tests/plugins_bundled/made_rar.h"
#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::unpack::test {
namespace {

class EveryFormat : public testing::TestWithParam<Kind> {};

TEST_P(EveryFormat, ListsItsFilesAndExtractsThemInAnyOrder) {
    Opened archive(MakeArchive(GetParam(), kFiles));
    ASSERT_EQ(archive.result, Result::kSuccess);
    ASSERT_EQ(archive.Count(), kFiles.size());
    for (size_t i = 0; i < kFiles.size(); ++i) {
        EXPECT_EQ(archive.At(i).name, kFiles[i].name);
        EXPECT_EQ(archive.At(i).size, kFiles[i].content.size());
        EXPECT_FALSE(archive.At(i).method.empty());
        if (GetParam() < Kind::kCab) {
            EXPECT_EQ(archive.At(i).time, kFileTime);
        }
    }
    for (const size_t index : {0, 1, 2, 3, 3, 2, 0, 2})
        EXPECT_EQ(archive.Content(index), kFiles[index].content) << index;

    // Stopped at once, or by the sink, and whole again afterwards.
    codec::Progress stop([](int, int) { return false; });
    TextSink sink;
    EXPECT_EQ(archive.reader->Extract(2, sink, stop), Result::kAborted);
    TextSink narrow(100'000);
    codec::Progress nobody;
    EXPECT_EQ(archive.reader->Extract(2, narrow, nobody), Result::kInternalError);
    EXPECT_EQ(archive.Content(2), kFiles[2].content);
}

// Whatever byte is damaged, nothing wrong comes out as right where check sums are checked:
// libarchive does not for stored members of RAR, and tar has none.
TEST_P(EveryFormat, SurvivesDamage) {
    const std::vector<File> files{{"a.txt", SomeText(3000, 3)}, {"b.txt", SomeText(3000, 4)}};
    const Bytes whole = MakeArchive(GetParam(), files);
    for (size_t size = 0; size < whole.size(); size += 97) {
        Opened cut(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size)));
        std::string text;
        for (size_t i = 0; i < cut.Count(); ++i)
            cut.Extract(i, text);
    }
    const bool hasSums = GetParam() != Kind::kTar && GetParam() != Kind::kCab &&
                         GetParam() != Kind::kRar && GetParam() != Kind::kRar5;
    for (size_t at = 0; at < whole.size(); at += 53) {
        Bytes bytes = whole;
        bytes[at] ^= 0x41;
        Opened damaged(bytes);
        for (size_t i = 0; i < damaged.Count(); ++i) {
            std::string text;
            const bool isGood = damaged.Extract(i, text) == Result::kSuccess;
            if (!isGood || damaged.told != Condition::kNone || !hasSums ||
                damaged.At(i).size != 3000)
                continue;
            EXPECT_TRUE(text == files[0].content || text == files[1].content) << at;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryFormat,
                         testing::Values(Kind::kZip, Kind::kZipStored, Kind::kSevenZip, Kind::kTar,
                                         Kind::kTarGzip, Kind::kTarBzip2, Kind::kTarXz, Kind::kCab,
                                         Kind::kRar, Kind::kRar5, Kind::kLzhLevel0,
                                         Kind::kLzhLevel1, Kind::kLzhLevel2));

TEST(Archive, NamesWhatIsMissing) {
    const std::vector<File> files{{"a", std::string(100, 'x')}};
    // Volumes list what they have.
    Bytes cab = MakeArchive(Kind::kCab, {{"a", std::string(600, 'x')}});
    cab[30] = 2;  // goes on in another, whose name and disk follow
    cab.insert(cab.begin() + 36, {'2', 0, 'b', 0});
    cab[16] += 4;
    cab[40] += 4;
    Bytes firstZip = MakeArchive(Kind::kZip, files);
    firstZip.insert(firstZip.begin(), {'P', 'K', 7, 8});
    firstZip.resize(firstZip.size() - 30);
    // A member of the first disk, cut, and the directory.
    const Bytes zip = MakeArchive(Kind::kZip, files);
    const size_t cutAt = Find(zip, "PK\3\4", 1) + 35;
    Bytes lastZip(zip.begin() + static_cast<ptrdiff_t>(cutAt), zip.end());
    lastZip[lastZip.size() - 18] = 1;  // the disk's number
    lastZip[lastZip.size() - 6] = static_cast<uint8_t>(Find(lastZip, "PK\1\2"));
    for (const Bytes& bytes : {MakeRar(files, kRarVolume, kRarSplitAfter),
                               MakeRar5(files, kRar5Volume), cab, firstZip, lastZip}) {
        Opened archive(bytes, "set");
        EXPECT_EQ(archive.result, Result::kSuccess) << bytes[0];
        EXPECT_EQ(archive.remark.condition, Condition::kVolumeMissing) << bytes[0];
    }
    EXPECT_EQ(Opened(lastZip).Refusal(0), Condition::kVolumeMissing);
    // Of one that was cut anywhere only the name tells.
    const Bytes whole = MakeArchive(Kind::kSevenZip, files);
    const Bytes cut(whole.begin(), whole.end() - 10);
    EXPECT_EQ(Opened(whole, "set.7z.001").remark.condition, Condition::kNone);
    EXPECT_EQ(Opened(cut, "set.7z.001").remark.condition, Condition::kVolumeMissing);
    EXPECT_EQ(Opened(cut, "set.7z").remark.condition, Condition::kDamaged);
    EXPECT_EQ(Opened(Bytes(100, 'x'), "set.7z.002").remark.condition, Condition::kVolumeMissing);
    EXPECT_EQ(Opened(Bytes(100, 'x'), "set.002").remark.condition, Condition::kNone);

    // The list is encrypted, or only what it lists.
    Bytes hidden{0x37, 0x7A, 0xBC, 0xAF, 0x27, 0x1C, 0, 4, 0xDC, 0xF7, 0x0F, 0x6F, 0x80};
    hidden.resize(20);
    hidden.insert(hidden.end(), {0x2E, 0, 0, 0, 0, 0, 0, 0, 0x24, 0xBB, 0x51, 0x33});
    hidden.resize(hidden.size() + 0x80);
    hidden.insert(hidden.end(),
                  {0x17, 6,    0x10, 1,    9,    0x70, 0,    7,    0x0B, 1,    0,    1,
                   0x24, 6,    0xF1, 7,    1,    0x12, 0x53, 0x0F, 0x0E, 0xE1, 0x60, 0x8F,
                   0xBE, 0xA9, 0x80, 0x50, 0xDA, 0xF4, 0xA2, 0xBF, 0x1F, 0xFA, 0xBA, 0xE7,
                   0x0C, 0x62, 0x0A, 1,    4,    0xE3, 0x1C, 0x4C, 0,    0});
    for (const Bytes& bytes :
         {hidden, MakeRar(files, kRarEncryptedHeaders), MakeRar5WithEncryptedHeaders()}) {
        Opened archive(bytes);
        EXPECT_EQ(archive.result, Result::kUnknownFormat) << bytes[0];
        EXPECT_EQ(archive.remark.condition, Condition::kDirectoryEncrypted) << bytes[0];
    }
    for (const Bytes& bytes : {MakeRar(files, 0, kRarEncryptedFile), MakeRar5(files, 0, true)}) {
        Opened archive(bytes);
        EXPECT_EQ(archive.remark.condition, Condition::kNone);
        ASSERT_EQ(archive.Count(), 1u);
        EXPECT_EQ(archive.Refusal(0), Condition::kPasswordNeeded);
    }
    EXPECT_EQ(Opened(LzhMember(2, "-lh9-", {"a", "x"}, "x")).Refusal(0), Condition::kKindNotRead);
}

TEST(Archive, TellsThatItsListIsDamaged) {
    const std::vector<File> files{{"a", SomeText(3000, 1)}, {"b", SomeText(3000, 2)}};
    Bytes tar = MakeArchive(Kind::kTar, files);
    tar.resize(3 * 512 + 100);
    const Bytes zip = MakeArchive(Kind::kZip, files);
    Bytes lost = zip;  // between two members
    lost.resize(Find(zip, "PK\3\4", 2));
    Bytes cut = zip;  // within the first one's header, which says that it is encrypted
    cut[Find(zip, "PK\3\4", 1) + 6] |= 1;
    cut.resize(Find(zip, "PK\3\4", 1) + 40);
    // Where the check sum of the whole stands.
    Bytes gzip = MakeArchive(Kind::kTarGzip, files);
    gzip[gzip.size() - 8] ^= 1;
    // Bytes by which the packing program is known.
    Bytes bzip2 = MakeArchive(Kind::kTarBzip2, files);
    bzip2[8] ^= 1;
    for (const Bytes& bytes : {tar, lost, cut, gzip, bzip2}) {
        Opened archive(bytes, "a.tar.bz2");
        EXPECT_EQ(archive.remark.condition, Condition::kDamaged) << bytes[0];
        EXPECT_NE(archive.result, Result::kUnknownFormat) << bytes[0];
    }
    Opened doubtful(gzip);
    ASSERT_EQ(doubtful.Count(), 2u);
    EXPECT_EQ(doubtful.Content(1), files[1].content);
    EXPECT_EQ(doubtful.told, Condition::kDamaged);
}

TEST(ArchiveFormat, IsToldByContentAndForCompressedFilesByNameToo) {
    const auto isArchive = [](const Bytes& bytes, std::string_view name) {
        return IsArchive(std::span(bytes).first(std::min<size_t>(bytes.size(), 2048)), name);
    };
    for (int kind = 0; kind <= static_cast<int>(Kind::kLzhLevel2); ++kind) {
        const bool isBzip2 = static_cast<Kind>(kind) == Kind::kTarBzip2;
        EXPECT_EQ(isArchive(MakeArchive(static_cast<Kind>(kind), kFiles), "name"), !isBzip2)
            << kind;
    }
    EXPECT_TRUE(isArchive(MakeArchive(Kind::kTarBzip2, kFiles), "A.TAR.BZ2"));
    Bytes tar = MakeArchive(Kind::kTar, kFiles);
    tar[3] ^= 1;
    for (const Bytes& other : {tar, Bytes(2048), Bytes(2048, ' '), Bytes{'B', 'M'}, Bytes{}})
        EXPECT_FALSE(isArchive(other, "archive.zip"));

    // A compressed file that is no tar archive is one member, if its name asks for unpacking.
    const Bytes gzip{0x1F, 0x8B, 8, 0,    0,    0,    0,    0, 0, 3, 0x4B, 0x4C,
                     0x4A, 6,    0, 0xC2, 0x41, 0x24, 0x35, 3, 0, 0, 0};
    EXPECT_FALSE(isArchive(gzip, "drawing.svgz"));
    EXPECT_TRUE(isArchive(gzip, "notes.txt.GZ"));
    Opened single(gzip, "notes.txt.GZ");
    ASSERT_EQ(single.Count(), 1u);
    EXPECT_EQ(single.At(0).name, "notes.txt");
    EXPECT_EQ(single.At(0).size, 3u);
    EXPECT_EQ(single.Content(0), "abc");
    // Its check sum, and its length.
    std::string text;
    for (const size_t at : {size_t{16}, size_t{20}}) {
        Bytes bad = gzip;
        bad[at] ^= 1;
        EXPECT_EQ(Opened(bad, "notes.txt.gz").Refusal(0), Condition::kDamaged) << at;
    }
    EXPECT_EQ(Opened(Bytes(100, ' ')).result, Result::kUnknownFormat);
}

}  // namespace
}  // namespace tessary::unpack::test
