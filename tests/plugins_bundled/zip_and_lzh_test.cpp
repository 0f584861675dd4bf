#include "plugins/axtessarc/little_endian.h"
#include "plugins/axtessarc/name_encoding.h"
#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::unpack::test {
namespace {

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

}  // namespace
}  // namespace tessary::unpack::test
