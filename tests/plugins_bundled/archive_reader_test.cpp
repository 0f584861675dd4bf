#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "plugins/axtessarc/archive_format.h"
#include "plugins/axtessarc/archive_reader.h"
#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/name_encoding.h"
#include "tests/plugins_bundled/made_archives.h"
#include "tests/plugins_bundled/made_rar.h"

namespace tessary::unpack::test {
namespace {

using codec::Condition;
using codec::Result;

class TextSink final : public files::ByteSink {
  public:
    explicit TextSink(size_t most = SIZE_MAX) : most_(most) {}
    bool Write(std::span<const uint8_t> bytes) noexcept override {
        if (text.size() + bytes.size() > most_) return false;
        text.append(bytes.begin(), bytes.end());
        return true;
    }
    std::string text;

  private:
    size_t most_;
};

// An archive in memory; without success of `result` there is no reader.
struct Opened {
    explicit Opened(Bytes archive, const std::string& name = {})
        : bytes(std::move(archive)),
          source(bytes),
          result(OpenArchive(source, name, reader, remark)) {}

    Result Extract(size_t index, std::string& text) {
        TextSink sink;
        codec::Progress nobody;
        const Result extracted = reader->Extract(index, sink, nobody);
        text = sink.text;
        told = nobody.Told().condition;
        return extracted;
    }
    // What is told of a member that cannot be extracted.
    Condition Refusal(size_t index) {
        std::string text;
        EXPECT_NE(Extract(index, text), Result::kSuccess);
        return told;
    }
    std::string Content(size_t index) {
        std::string text;
        EXPECT_EQ(Extract(index, text), Result::kSuccess) << index;
        return text;
    }
    const Member& At(size_t index) const { return reader->Members().at(index); }
    size_t Count() const { return reader == nullptr ? 0 : reader->Members().size(); }

    Bytes bytes;
    dib::MemorySource source;
    std::unique_ptr<ArchiveReader> reader;
    codec::Remark remark;
    Condition told = Condition::kNone;  // by the last extraction
    Result result;
};

// Where `text` stands in `bytes` for the `nth` time.
size_t Find(const Bytes& bytes, std::string_view text, size_t nth = 0) {
    auto at = std::search(bytes.begin(), bytes.end(), text.begin(), text.end());
    for (; nth > 0; --nth)
        at = std::search(at + 1, bytes.end(), text.begin(), text.end());
    EXPECT_NE(at, bytes.end());
    return static_cast<size_t>(at - bytes.begin());
}

const std::vector<File> kFiles{{"first.txt", SomeText(100'000, 1)},
                               {"folder/small.txt", "small"},
                               {"folder/large.txt", SomeText(300'000, 2)},
                               {"empty.txt", ""}};

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

class CountingSource final : public dib::ByteSource {
  public:
    explicit CountingSource(const Bytes& bytes) : bytes_(bytes) {}
    uint64_t Size() const override { return bytes_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        const auto got = bytes_.ReadAt(offset, into);
        count += got.value_or(0);
        return got;
    }
    uint64_t count = 0;

  private:
    dib::MemorySource bytes_;
};

TEST(StreamArchive, GoesOnFromWhereItIsWhenSteppingForward) {
    std::vector<File> files;
    for (unsigned i = 0; i < 20; ++i)
        files.push_back({"page" + std::to_string(i), SomeText(100'000, i)});
    for (const Kind kind : {Kind::kSevenZip, Kind::kTarGzip, Kind::kTarXz, Kind::kRar}) {
        const Bytes bytes = MakeArchive(kind, files);
        CountingSource source(bytes);
        std::unique_ptr<ArchiveReader> reader;
        codec::Remark remark;
        ASSERT_EQ(OpenArchive(source, "", reader, remark), Result::kSuccess);
        source.count = 0;
        codec::Progress nobody;
        for (size_t i = 0; i < files.size(); ++i) {
            TextSink sink;
            EXPECT_EQ(reader->Extract(i, sink, nobody), Result::kSuccess);
            EXPECT_EQ(sink.text, files[i].content);
        }
        EXPECT_LT(source.count, bytes.size() * 3 / 2) << static_cast<int>(kind);
    }
}

// As after an allocation that failed, wherever that was.
class ForgetfulSource final : public dib::ByteSource {
  public:
    explicit ForgetfulSource(const Bytes& bytes) : bytes_(bytes) {}
    uint64_t Size() const override { return bytes_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        errno = ENOMEM;
        return bytes_.ReadAt(offset, into);
    }

  private:
    dib::MemorySource bytes_;
};

TEST(StreamArchive, TakesNoOldFailureForAWantOfMemory) {
    for (const char* name :
         {"\x95\x5C\x83.txt", "\xE8\xA1\xA8\xF0\x9F\x98\x80\xFF.txt", "\xF0\x9F\x98\x80.txt"}) {
        for (int kind = 0; kind < static_cast<int>(Kind::kLzhLevel0); ++kind) {
            const Bytes bytes = MakeArchive(static_cast<Kind>(kind), {{name, "1"}, {"b", "2"}});
            const Opened usual(bytes);
            ForgetfulSource source(bytes);
            std::unique_ptr<ArchiveReader> reader;
            codec::Remark remark;
            ASSERT_EQ(OpenArchive(source, "", reader, remark), usual.result) << kind;
            ASSERT_EQ(reader->Members().size(), usual.Count()) << kind;
            for (size_t i = 0; i < usual.Count(); ++i) {
                EXPECT_EQ(reader->Members()[i].name, usual.At(i).name) << kind;
                TextSink sink;
                codec::Progress nobody;
                EXPECT_EQ(reader->Extract(i, sink, nobody), Result::kSuccess) << kind;
            }
        }
    }
}

TEST(StreamArchive, UnpacksWhatIsLargerThanTheWindowOfRar3) {
    File file{"large.bmp", {}};
    Opened archive(MakeCompressedRar(file));
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_TRUE(archive.Content(0) == file.content);
}

TEST(StreamArchive, ListsNoMoreThanCanBeUnpackedInTime) {
    // 2 GiB of zeros between two headers, in 2 MiB.
    Bytes tar = MakeArchive(Kind::kTar, {{"a", ""}, {"b", "x"}});
    tar[512 + 124] = '2';  // the first of 11 octal digits, behind the header of the folder
    SumTarHeaders(tar);
    const std::ptrdiff_t split = 1024;
    const Bytes zeros = Gzip(Bytes(16u << 20));
    Bytes bomb = Gzip({tar.begin(), tar.begin() + split});
    for (int i = 0; i < 128; ++i)
        bomb.insert(bomb.end(), zeros.begin(), zeros.end());
    const Bytes rest = Gzip({tar.begin() + split, tar.end()});
    bomb.insert(bomb.end(), rest.begin(), rest.end());
    Opened archive(bomb);
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_EQ(archive.At(0).size, 2u << 30);
}

TEST(ZipArchive, KeepsDamageToItsMember) {
    const std::vector<File> files{{"a.txt", SomeText(5000, 1)}, {"b.txt", SomeText(5000, 2)}};
    const Bytes whole = MakeArchive(Kind::kZip, files);
    const size_t second = Find(whole, "b.txt");
    Bytes bytes = whole;
    bytes[second - 500] ^= 0x55;
    Opened damaged(bytes);
    ASSERT_EQ(damaged.Count(), 2u);
    std::string text;
    EXPECT_EQ(damaged.Extract(0, text), Result::kBrokenData);
    EXPECT_EQ(damaged.Content(1), files[1].content);

    // Without the directory at the end, what is whole is still found.
    Opened cut(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(second + 300)));
    ASSERT_EQ(cut.Count(), 2u);
    EXPECT_EQ(cut.Content(0), files[0].content);
    EXPECT_EQ(cut.Extract(1, text), Result::kBrokenData);

    // Sizes, methods and flags of the directory, where it claims what is not so.
    const size_t record = Find(whole, "PK\1\2", 2);  // behind that of the folder
    const auto changed = [&](size_t offset, uint64_t value, size_t count) {
        Bytes bytes = whole;
        for (size_t i = 0; i < count; ++i, value >>= 8)
            bytes[record + offset + i] = static_cast<uint8_t>(value);
        Opened archive(bytes);
        return archive.Count() != 2 ? Result::kReadError : archive.Extract(1, text);
    };
    EXPECT_EQ(changed(24, 0xFFFF'FFFE, 4), Result::kBrokenData);  // 4 GiB unpacked
    EXPECT_EQ(changed(24, 10, 4), Result::kBrokenData);
    EXPECT_EQ(changed(20, 0x7FFF'FFFF, 4), Result::kBrokenData);  // 2 GiB packed
    EXPECT_EQ(changed(42, 0x7FFF'FFFF, 4), Result::kBrokenData);
    EXPECT_EQ(changed(8, 1, 1), Result::kUnknownFormat);  // encrypted
    EXPECT_EQ(changed(10, 9, 2), Result::kUnknownFormat);
}

TEST(ZipArchive, IsFoundBehindOtherDataAndMayBeEmpty) {
    Bytes bytes = MakeArchive(Kind::kZip, kFiles);
    bytes.insert(bytes.begin() + 4, {'P', 'K', 3, 4});  // so that it still begins like an archive
    Opened shifted(bytes);
    ASSERT_EQ(shifted.Count(), kFiles.size());
    EXPECT_EQ(shifted.Content(2), kFiles[2].content);

    // Its comment may hold another archive, or what looks like an empty one.
    Bytes falseEnd(64);
    std::copy_n("PK\5\6", 4, falseEnd.begin());
    Bytes comment = MakeArchive(Kind::kZip, {{"other", ""}});
    comment.insert(comment.end(), falseEnd.begin(), falseEnd.end());
    Bytes commented = bytes;
    commented[bytes.size() - 2] = static_cast<uint8_t>(comment.size());
    commented[bytes.size() - 1] = static_cast<uint8_t>(comment.size() >> 8);
    commented.insert(commented.end(), comment.begin(), comment.end());
    EXPECT_EQ(Opened(commented).Count(), kFiles.size());
    // So may what a download left behind it.
    bytes.insert(bytes.end(), falseEnd.begin(), falseEnd.end());
    falseEnd[12] = 1;  // the size of a directory
    bytes.insert(bytes.end(), falseEnd.begin(), falseEnd.end());
    Opened trailed(bytes);
    ASSERT_EQ(trailed.Count(), kFiles.size());
    EXPECT_NE(trailed.At(2).crc, 0u);  // which only the directory tells

    Bytes empty{'P', 'K', 5, 6};
    empty.resize(22);
    Opened nothing(empty);
    EXPECT_EQ(nothing.result, Result::kSuccess);
    EXPECT_EQ(nothing.Count(), 0u);
}

TEST(ZipArchive, TakesTheNameThatItsMarksMean) {
    const std::string japanese = "\x95\x5C.txt";  // Shift-JIS, with a backslash for second half
    Opened plain(MakeArchive(Kind::kZip, {{japanese, "1"}, {"caf\xC3\xA9/\xE8\xA1\xA8.txt", "2"}}));
    ASSERT_EQ(plain.Count(), 2u);
    EXPECT_EQ(plain.At(0).name, japanese);
    EXPECT_FALSE(plain.At(0).nameIsUtf8);
    EXPECT_TRUE(plain.At(1).nameIsUtf8);
    EXPECT_EQ(plain.At(0).crc, 0x83DCEFB7u);  // CRC-32 of "1"

    Opened rar(MakeArchive(Kind::kRar, {{"\x95\x5C\\" + japanese, "1"}}));
    ASSERT_EQ(rar.Count(), 1u);
    EXPECT_EQ(rar.At(0).name, "\x95\x5C/" + japanese);
    EXPECT_FALSE(rar.At(0).nameIsUtf8);

    EXPECT_TRUE(LooksLikeUtf8("\xE3\x83\x86\xE3\x82\xB9"));
    EXPECT_FALSE(LooksLikeUtf8("\xC3\xBD\xC4\xAF"));  // half-width katakana
    EXPECT_FALSE(LooksLikeUtf8("plain"));
    EXPECT_FALSE(LooksLikeUtf8("\xED\xA0\x80"));  // half of a surrogate pair
    EXPECT_EQ(Utf8FromWide(L"\u8868\U0001F600"), "\xE8\xA1\xA8\xF0\x9F\x98\x80");
}

TEST(LzhArchive, UnpacksOldMethodsAndKeepsDoubleByteNames) {
    // One code for all: 300 times the letter A.
    const std::string lh5("\x01\x2C\0\0\x04\x10\0\0", 8);
    Bytes bytes = LzhMember(0, "-lh1-", LharcFile(), LharcPacked());
    const auto append = [&bytes](const Bytes& member) {
        bytes.insert(bytes.end(), member.begin(), member.end());
    };
    append(LzhMember(1, "-lh5-", {"\x95\x5C/\x83\x5C.txt", std::string(300, 'A')}, lh5));
    append(LzhMember(2, "-lhd-", {"folder/", ""}, ""));
    append(LzhMember(2, "-xx9-", {"unknown", "x"}, "x"));
    append(LzhMember(2, "-lh9-", {"unknown", "x"}, "x"));
    Opened archive(bytes);
    ASSERT_EQ(archive.Count(), 2u);  // up to what is no header
    EXPECT_EQ(archive.At(0).method, "-lh1-");
    EXPECT_EQ(archive.Content(0), LharcFile().content);
    EXPECT_EQ(archive.At(1).name, "\x95\x5C/\x83\x5C.txt");
    EXPECT_EQ(archive.Content(1), std::string(300, 'A'));

    std::string text;
    bytes = LzhMember(2, "-lh9-", {"unknown", "x"}, "x");
    EXPECT_EQ(Opened(bytes).Extract(0, text), Result::kUnknownFormat);
    bytes = LzhMember(1, "-lh1-", {"wrong", "abracadabra, abracadabrb"}, LharcPacked());
    EXPECT_EQ(Opened(bytes).Extract(0, text), Result::kBrokenData);
    // Nothing is taken from a later member for one of a method that nobody knows.
    bytes = LzhMember(0, "-lz2-", {"unknown", "x"}, "x");
    append(LzhMember(0, "-lh0-", {"known", "y"}, "y"));
    EXPECT_NE(Opened(bytes).result, Result::kSuccess);
}

TEST(LzhArchive, GoesOnBehindEntriesWithoutAName) {
    for (int level = 0; level <= 2; ++level) {
        Bytes bytes = LzhMember(level, "-lhd-", {"", ""}, "");
        for (const char* name : {"a", "", "b"}) {
            const Bytes member = LzhMember(level, "-lh0-", {name, "x"}, "x");
            bytes.insert(bytes.end(), member.begin(), member.end());
        }
        Opened archive(bytes);
        ASSERT_EQ(archive.Count(), 3u) << level;
        EXPECT_EQ(archive.At(2).name, "b");
        EXPECT_EQ(archive.Content(2), "x");
    }
}

TEST(LzhArchive, UnpacksLongMembersOfLarc) {
    // Eight literals, then copies of them: two bytes each, also across the pieces that are read.
    std::string packed =
        "\xFF"
        "abcdefgh";
    std::string text = "abcdefgh";
    while (packed.size() < 80'000) {
        packed += '\0';
        for (int i = 0; i < 8; ++i) {
            const size_t from = 4096 - 18 + text.size() - 8;  // in a ring of 4096 bytes
            packed += static_cast<char>(from);
            packed += static_cast<char>((from >> 4 & 0xF0) | 15);
            for (int k = 0; k < 18; ++k)
                text += text[text.size() - 8];
        }
    }
    Opened archive(LzhMember(0, "-lz5-", {"large", text}, packed));
    ASSERT_EQ(archive.Count(), 1u);
    EXPECT_TRUE(archive.Content(0) == text);
}

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
