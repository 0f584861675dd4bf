#include "plugins/axtessarc/name_encoding.h"
#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::unpack::test {
namespace {

using namespace tessary::test;

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

TEST(ZipArchive, TakesTheNameThatItsMarksMean) {
    Opened plain(Archive("zip-names"));
    ASSERT_EQ(plain.Count(), 6u);
    EXPECT_EQ(plain.At(0).name, "\x95\x5C\x8E\xA6\\\x94\x5C\x83\x5C.bmp");  // second halves are `\`
    EXPECT_FALSE(plain.At(0).nameIsUtf8);
    EXPECT_TRUE(plain.At(4).nameIsUtf8);
    EXPECT_EQ(plain.At(0).crc, 0x83DCEFB7u);  // CRC-32 of "1"

    Opened rar(Archive("rar-names"));
    ASSERT_NE(rar.Count(), 0u);
    EXPECT_EQ(rar.At(0).name, "\x95\x5C\x8E\xA6/\x94\x5C\x83\x5C.bmp");
    EXPECT_FALSE(rar.At(0).nameIsUtf8);

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

// Eight literals, then copies of them: two bytes each, also across the pieces that are read.
TEST(LzhArchive, UnpacksLongMembersOfLarc) {
    Opened archive(Archive("lzh-lz5-large.gz"));
    ASSERT_EQ(archive.Count(), 1u);
    std::string text;
    while (text.size() < 338'840)
        text += "abcdefgh";
    EXPECT_TRUE(archive.Content(0) == text);
}

}  // namespace
}  // namespace tessary::unpack::test
