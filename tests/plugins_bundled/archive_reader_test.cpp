#include "plugins/axtessarc/archive_format.h"

#include <cerrno>

#include "plugins/axtessarc/name_encoding.h"
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

// Counts what is read, and is as after an allocation that failed, wherever that was.
class WatchedSource final : public dib::ByteSource {
  public:
    explicit WatchedSource(const Bytes& bytes) : bytes_(bytes) {}
    uint64_t Size() const override { return bytes_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        errno = ENOMEM;
        const auto got = bytes_.ReadAt(offset, into);
        count += got.value_or(0);
        return got;
    }
    uint64_t count = 0;

  private:
    dib::MemorySource bytes_;
};

TEST(StreamArchive, GoesOnFromWhereItIsWhenSteppingForward) {
    for (const char* name : {"7z-large.gz", "tar-gz-large.gz", "tar-xz-large.gz", "rar-large.gz"}) {
        OpenedFrom<WatchedSource> archive(Archive(name));
        ASSERT_EQ(archive.result, Result::kSuccess);
        archive.source.count = 0;
        for (size_t i = 0; i < std::size(kLarge); ++i)
            EXPECT_TRUE(archive.Content(i) == kLarge[i].Content());
        EXPECT_LT(archive.source.count, archive.bytes.size() * 3 / 2) << name;
    }
}

TEST(StreamArchive, TakesNoOldFailureForAWantOfMemory) {
    for (const std::string& format : kFormats) {
        if (format.starts_with("lzh")) continue;
        const Opened usual(Archive(format + "-names"));
        OpenedFrom<WatchedSource> archive(usual.bytes);
        ASSERT_EQ(archive.result, usual.result) << format;
        ASSERT_EQ(archive.Count(), usual.Count()) << format;
        for (size_t i = 0; i < usual.Count(); ++i) {
            EXPECT_EQ(archive.At(i).name, usual.At(i).name) << format;
            archive.Content(i);
        }
    }
}

TEST(StreamArchive, UnpacksWhatIsLargerThanTheWindowOfRar3) {
    Opened archive(Archive("rar3-window.gz"));
    ASSERT_EQ(archive.Count(), 1u);
    const std::string content = archive.Content(0);
    EXPECT_EQ(content.size(), 4'494'512u);
    const auto* const bytes = reinterpret_cast<const Bytef*>(content.data());
    EXPECT_EQ(crc32(0, bytes, static_cast<uInt>(content.size())), 0x05C2EE09u);
}

TEST(StreamArchive, ListsNoMoreThanCanBeUnpackedInTime) {
    Opened archive(Archive("tar-bomb.gz.gz"));  // 2 GiB of zeros between two headers, in 2 MiB
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_EQ(archive.At(0).size, 2u << 30);
}

Bytes Joined(Bytes bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return bytes;
}

TEST(ZipArchive, KeepsDamageToItsMember) {
    const std::string a = TextOf("a.txt", 300), b = TextOf("b.txt", 300);
    const Bytes whole = Archive("zip-two");
    const size_t second = Find(whole, "PK\3\4", 2);  // behind that of the folder
    std::string text;
    Opened damaged(Damaged(whole, second - 50, 0x55));
    ASSERT_EQ(damaged.Count(), 2u);
    EXPECT_EQ(damaged.Extract(0, text), Result::kBrokenData);
    EXPECT_EQ(damaged.Content(1), b);

    // Without the directory at the end, what is whole is still found.
    Opened cut(Cut(whole, second + 100));
    ASSERT_EQ(cut.Count(), 2u);
    EXPECT_EQ(cut.Content(0), a);
    EXPECT_EQ(cut.Extract(1, text), Result::kBrokenData);

    // Sizes, methods and flags of the directory, where it claims what is not so.
    const size_t record = Find(whole, "PK\1\2", 2);
    const std::tuple<size_t, uint64_t, size_t, Result> claims[] = {
        {24, 0xFFFF'FFFE, 4, Result::kBrokenData},  // 4 GiB unpacked
        {24, 10, 4, Result::kBrokenData},
        {20, 0x7FFF'FFFF, 4, Result::kBrokenData},  // 2 GiB packed
        {42, 0x7FFF'FFFF, 4, Result::kBrokenData},
        {8, 1, 1, Result::kUnknownFormat},  // encrypted
        {10, 9, 2, Result::kUnknownFormat},
    };
    for (const auto& [offset, value, count, result] : claims) {
        Opened archive(With(whole, record + offset, value, count));
        ASSERT_EQ(archive.Count(), 2u);
        EXPECT_EQ(archive.Extract(1, text), result) << offset << ' ' << value;
    }
}

TEST(ZipArchive, IsFoundBehindOtherDataAndMayBeEmpty) {
    // So that it still begins like an archive.
    const Bytes bytes = Joined({'P', 'K', 3, 4}, Archive("zip-two"));
    Opened shifted(bytes);
    ASSERT_EQ(shifted.Count(), 2u);
    EXPECT_EQ(shifted.Content(1), TextOf("b.txt", 300));

    // Its comment may hold another archive, or what looks like an empty one.
    const Bytes falseEnd = Cut({'P', 'K', 5, 6}, 64);
    const Bytes comment = Joined(Archive("zip-names"), falseEnd);
    const Bytes commented = With(bytes, bytes.size() - 2, comment.size(), 2);
    EXPECT_EQ(Opened(Joined(commented, comment)).Count(), 2u);
    // So may what a download left behind it: one, and one with the size of a directory.
    Opened trailed(Joined(Joined(bytes, falseEnd), With(falseEnd, 12, 1)));
    ASSERT_EQ(trailed.Count(), 2u);
    EXPECT_NE(trailed.At(1).crc, 0u);  // which only the directory tells

    Opened nothing(Cut(falseEnd, 22));
    EXPECT_EQ(nothing.result, Result::kSuccess);
    EXPECT_EQ(nothing.Count(), 0u);
}

TEST(NameEncoding, TellsUtf8FromShiftJis) {
    EXPECT_TRUE(LooksLikeUtf8("\xE3\x83\x86\xE3\x82\xB9"));
    EXPECT_FALSE(LooksLikeUtf8("\xC3\xBD\xC4\xAF"));  // half-width katakana
    EXPECT_FALSE(LooksLikeUtf8("plain"));
    EXPECT_FALSE(LooksLikeUtf8("\xED\xA0\x80"));  // half of a surrogate pair
    EXPECT_EQ(Utf8FromWide(L"\u8868\U0001F600"), "\xE8\xA1\xA8\xF0\x9F\x98\x80");
}

TEST(LzhArchive, UnpacksOldMethodsAndKeepsDoubleByteNames) {
    Opened archive(Archive("lzh-methods"));
    ASSERT_EQ(archive.Count(), 2u);  // up to what is no header
    EXPECT_EQ(archive.At(0).method, "-lh1-");
    EXPECT_EQ(archive.Content(0), "abracadabra, abracadabra");
    EXPECT_EQ(archive.At(1).name, "\x95\x5C/\x83\x5C.txt");
    EXPECT_EQ(archive.Content(1), std::string(300, 'A'));

    std::string text;
    EXPECT_EQ(Opened(Archive("lzh-lh9")).Extract(0, text), Result::kUnknownFormat);
    EXPECT_EQ(Opened(Archive("lzh-lh1-wrong")).Extract(0, text), Result::kBrokenData);
    // Nothing is taken from a later member for one of a method that nobody knows.
    EXPECT_NE(Opened(Archive("lzh-lz2-first")).result, Result::kSuccess);
}

TEST(LzhArchive, GoesOnBehindEntriesWithoutAName) {
    for (const char* level : {"0", "1", "2"}) {
        Opened archive(Archive(std::string("lzh-nameless") + level));
        ASSERT_EQ(archive.Count(), 3u) << level;
        EXPECT_EQ(archive.At(2).name, "b");
        EXPECT_EQ(archive.Content(2), "x");
    }
}

}  // namespace
}  // namespace tessary::unpack::test
