#include "plugins/axtessarc/archive_format.h"
#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::unpack::test {
namespace {

using namespace tessary::test;

class EveryFormat : public testing::TestWithParam<std::string> {};

TEST_P(EveryFormat, ListsItsFilesAndExtractsThemInAnyOrder) {
    Opened archive(Archive(GetParam() + "-large.gz"));
    ASSERT_EQ(archive.result, Result::kSuccess);
    ASSERT_EQ(archive.Count(), std::size(kLarge));
    const bool hasTime = GetParam()[0] == 'z' || GetParam()[0] == 't' || GetParam() == "7z";
    for (size_t i = 0; i < archive.Count(); ++i) {
        EXPECT_EQ(archive.At(i).name, kLarge[i].name);
        EXPECT_EQ(archive.At(i).size, kLarge[i].size);
        EXPECT_FALSE(archive.At(i).method.empty());
        EXPECT_TRUE(!hasTime || archive.At(i).time == kFileTime);
    }
    for (const size_t index : {0, 1, 2, 3, 3, 2, 0, 2})
        EXPECT_TRUE(archive.Content(index) == kLarge[index].Content()) << index;

    // Stopped at once, or by the sink, and whole again afterwards.
    codec::Progress stop([](int, int) { return false; });
    TextSink sink;
    EXPECT_EQ(archive.reader->Extract(2, sink, stop), Result::kAborted);
    TextSink narrow(100'000);
    codec::Progress nobody;
    EXPECT_EQ(archive.reader->Extract(2, narrow, nobody), Result::kInternalError);
    EXPECT_TRUE(archive.Content(2) == kLarge[2].Content());
}

// Whatever byte is damaged, nothing wrong comes out as right where check sums are checked:
// libarchive does not for stored members of RAR, and tar has none. Where damage hides the end of a
// compressed tar archive, that is told of its list.
TEST_P(EveryFormat, SurvivesDamage) {
    const Bytes whole = Archive(GetParam() + "-two");
    for (size_t size = 0; size < whole.size(); size += 7) {
        Opened cut(Cut(whole, size));
        std::string text;
        for (size_t i = 0; i < cut.Count(); ++i)
            cut.Extract(i, text);
    }
    const bool isTar = GetParam().starts_with("tar");
    const bool hasSums = GetParam() != "tar" && GetParam() != "cab" && GetParam()[0] != 'r';
    for (size_t at = 0; at < whole.size(); at += 1 + whole.size() / 300) {
        Opened damaged(Damaged(whole, at, 0x41));
        for (size_t i = 0; i < damaged.Count(); ++i) {
            std::string text;
            const bool isGood = damaged.Extract(i, text) == Result::kSuccess;
            const bool isTold = damaged.told != Condition::kNone ||
                                (isTar && damaged.remark.condition != Condition::kNone);
            if (!isGood || isTold || !hasSums || damaged.At(i).size != 300) continue;
            EXPECT_TRUE(text == TextOf("a.txt", 300) || text == TextOf("b.txt", 300)) << at;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, EveryFormat, testing::ValuesIn(kFormats));

TEST(Archive, NamesWhatIsMissing) {
    // Volumes list what they have.
    for (const char* name : {"rar-volume", "rar5-volume", "cab-volume", "zip-first", "zip-last"}) {
        Opened archive(Archive(name), "set");
        EXPECT_EQ(archive.result, Result::kSuccess) << name;
        EXPECT_EQ(archive.remark.condition, Condition::kVolumeMissing) << name;
    }
    EXPECT_EQ(Opened(Archive("zip-last")).Refusal(0), Condition::kVolumeMissing);
    // Of one that was cut anywhere only the name tells.
    const Bytes whole = Archive("7z-two");
    const Bytes cut = Cut(whole, whole.size() - 10);
    const std::tuple<Bytes, const char*, Condition> pieces[] = {
        {whole, "set.7z.001", Condition::kNone},
        {cut, "set.7z.001", Condition::kVolumeMissing},
        {cut, "set.7z", Condition::kDamaged},
        {Bytes(100, 'x'), "set.7z.002", Condition::kVolumeMissing},
        {Bytes(100, 'x'), "set.002", Condition::kNone},
    };
    for (const auto& [bytes, name, condition] : pieces)
        EXPECT_EQ(Opened(bytes, name).remark.condition, condition) << name;

    // The list is encrypted, or only what it lists.
    for (const char* name : {"7z-hidden", "rar-hidden", "rar5-hidden"}) {
        Opened archive(Archive(name));
        EXPECT_EQ(archive.result, Result::kUnknownFormat) << name;
        EXPECT_EQ(archive.remark.condition, Condition::kDirectoryEncrypted) << name;
    }
    for (const char* name : {"rar-encrypted", "rar5-encrypted"}) {
        Opened archive(Archive(name));
        EXPECT_EQ(archive.remark.condition, Condition::kNone);
        ASSERT_EQ(archive.Count(), 1u) << name;
        EXPECT_EQ(archive.Refusal(0), Condition::kPasswordNeeded);
    }
    EXPECT_EQ(Opened(Archive("lzh-lh9")).Refusal(0), Condition::kKindNotRead);
}

TEST(Archive, TellsThatItsListIsDamaged) {
    const Bytes zip = Archive("zip-two"), gzip = Archive("tar-gz-two");
    const size_t first = Find(zip, "PK\3\4", 1);
    const Bytes wrongSum = Damaged(gzip, gzip.size() - 8);  // that of the whole
    const Bytes broken[] = {
        Cut(Archive("tar-two"), 2 * 512 + 100),
        Cut(zip, Find(zip, "PK\3\4", 2)),             // between two members
        Cut(Damaged(zip, first + 6), first + 40),     // in a header that says it is encrypted
        wrongSum, Damaged(Archive("tar-bz2-two"), 8)  // bytes by which the packer is known
    };
    for (const Bytes& bytes : broken) {
        Opened archive(bytes, "a.tar.bz2");
        EXPECT_EQ(archive.remark.condition, Condition::kDamaged) << &bytes - broken;
        EXPECT_NE(archive.result, Result::kUnknownFormat) << &bytes - broken;
    }
    Opened doubtful(wrongSum);
    ASSERT_EQ(doubtful.Count(), 2u);
    EXPECT_EQ(doubtful.Content(1), TextOf("b.txt", 300));
    EXPECT_EQ(doubtful.told, Condition::kDamaged);
}

TEST(ArchiveFormat, IsToldByContentAndForCompressedFilesByNameToo) {
    const auto isArchive = [](const Bytes& bytes, std::string_view name) {
        return IsArchive(std::span(bytes).first(std::min<size_t>(bytes.size(), 2048)), name);
    };
    for (const std::string& format : kFormats)
        EXPECT_EQ(isArchive(Archive(format + "-two"), "name"), format != "tar-bz2") << format;
    EXPECT_TRUE(isArchive(Archive("tar-bz2-two"), "A.TAR.BZ2"));
    const Bytes tar = Damaged(Archive("tar-two"), 3);
    for (const Bytes& other : {tar, Bytes(2048), Bytes(2048, ' '), Bytes{'B', 'M'}, Bytes{}})
        EXPECT_FALSE(isArchive(other, "archive.zip"));

    // A compressed file that is no tar archive is one member, if its name asks for unpacking.
    const Bytes gzip = Archive("txt-gz");
    EXPECT_FALSE(isArchive(gzip, "drawing.svgz"));
    EXPECT_TRUE(isArchive(gzip, "notes.txt.GZ"));
    Opened single(gzip, "notes.txt.GZ");
    ASSERT_EQ(single.Count(), 1u);
    EXPECT_EQ(single.At(0).name, "notes.txt");
    EXPECT_EQ(single.At(0).size, 3u);
    EXPECT_EQ(single.Content(0), "abc");
    for (const size_t at : {16, 20})  // its check sum, its length
        EXPECT_EQ(Opened(Damaged(gzip, at), "notes.txt.gz").Refusal(0), Condition::kDamaged) << at;
    EXPECT_EQ(Opened(Bytes(100, ' ')).result, Result::kUnknownFormat);
}

}  // namespace
}  // namespace tessary::unpack::test
