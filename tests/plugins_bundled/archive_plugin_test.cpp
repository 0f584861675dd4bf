#include <algorithm>
#include <filesystem>

#include "plugins/axtessarc/member_name.h"
#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/plugins_bundled/opened_archive.h"

namespace tessary::spi::test {
namespace {

using namespace tessary::test;
using unpack::test::Archive;
using unpack::test::kFileTime;
using unpack::test::kLarge;

// What a host holds of an archive: its name, or the address and size of its bytes.
struct Source {
    explicit Source(const std::string& path) : address(path.c_str()), length(0), flag(0) {}
    explicit Source(const Bytes& block)
        : address(reinterpret_cast<const char*>(block.data())),
          length(static_cast<LONG_PTR>(block.size())),
          flag(susie::kSourceMemory) {}

    const char* address;
    LONG_PTR length;
    uint32_t flag;
};

class AxtArc : public testing::Test {
  protected:
    // The records up to the end record; the block has no room for more.
    std::vector<susie::FileInfo> List(const Source& source, int expected = susie::kSuccess) const {
        HLOCAL block = nullptr;
        const int result =
            plugin.getArchiveInfo(source.address, source.length, source.flag, &block);
        EXPECT_EQ(result, expected);
        std::vector<susie::FileInfo> records(LocalSize(block) / sizeof(susie::FileInfo));
        if (block == nullptr) return {};
        std::memcpy(records.data(), LocalLock(block), LocalSize(block));
        LocalUnlock(block);
        LocalFree(block);
        const susie::FileInfo end{};
        EXPECT_EQ(std::memcmp(&records.back(), &end, sizeof end), 0);
        records.pop_back();
        for (const susie::FileInfo& record : records)
            EXPECT_NE(record.method[0], 0);
        return records;
    }

    int Extract(const Source& source, LONG_PTR position, std::string* content = nullptr) const {
        HLOCAL block = nullptr;
        const int result = plugin.getFile(source.address, position, reinterpret_cast<char*>(&block),
                                          source.flag | susie::kDestinationMemory, nullptr, 0);
        EXPECT_EQ(block != nullptr, result == susie::kSuccess);
        if (block == nullptr) return result;
        EXPECT_EQ(LocalFlags(block) & LMEM_LOCKCOUNT, 0u);
        if (content != nullptr)
            content->assign(static_cast<const char*>(LocalLock(block)), LocalSize(block));
        LocalUnlock(block);
        LocalFree(block);
        return result;
    }
    std::string Content(const Source& source, LONG_PTR position) const {
        std::string content;
        EXPECT_EQ(Extract(source, position, &content), susie::kSuccess) << position;
        return content;
    }

    const LoadedArchivePlugin plugin{"axtessarc"};
    const TemporaryFolder folder;
};

TEST_F(AxtArc, IntroducesItselfAndTellsItsFiles) {
    EXPECT_EQ(plugin.CountTexts("00AM"), 16);

    Bytes bytes = Archive("tar-gz-two");
    const std::string path = Written(folder, bytes);
    EXPECT_EQ(plugin.isSupported(path.c_str(), nullptr), 1);
    bytes.resize(susie::kHeaderBlockSize);
    EXPECT_EQ(plugin.isSupported(nullptr, bytes.data()), 1);
    const Bytes junk(susie::kHeaderBlockSize, 0x20);
    EXPECT_EQ(plugin.isSupported(path.c_str(), junk.data()), 0);
    List(Source(junk), susie::kUnknownFormat);
    List(Source(path + "missing"), susie::kReadError);
}

TEST_F(AxtArc, ListsNamesThatEveryHostCanUse) {
    const Bytes bytes = Archive("zip-odd-names.gz");
    const auto list = List(Source(bytes));
    ASSERT_EQ(list.size(), 10u);
    std::string doubleBytes = "x";
    while (doubleBytes.size() < 195)
        doubleBytes += "\x83\x5C";  // its second byte is a backslash's
    const std::string expected[][2] = {
        {"sub\\dir\\", "\x95\x5C.jpg"},
        {"__\\C_\\", "a_b_.txt__"},
        {"", "_aux.png"},
        {std::string(198, 'n') + "\\", std::string(194, 'n') + ".jpeg"},
        {"", doubleBytes + ".bmp"},
        {"", "__\x95\x5C\xFB\x7E.gif"},
        {"", "\xC3\xBD\xC4\xAF.gif"},
        {"", "caf_.gif"},       // Latin-1: half a character in Shift-JIS
        {"", "\x82\xAA_.gif"},  // decomposed, as macOS does
        {"", "__.gif"},
    };
    const auto find = [&](const std::string& name) {
        susie::FileInfo found{};
        const Source source(bytes);
        return plugin.getFileInfo(source.address, source.length, name.c_str(), source.flag,
                                  &found) == susie::kSuccess
                   ? static_cast<int>(found.position)
                   : -1;
    };
    for (size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list[i].path, expected[i][0]) << i;
        EXPECT_EQ(list[i].fileName, expected[i][1]) << i;
        EXPECT_EQ(list[i].fileSize, 1u);
        EXPECT_EQ(list[i].timestamp, kFileTime);
        EXPECT_EQ(find(expected[i][0] + expected[i][1]), static_cast<int>(list[i].position));
    }
    EXPECT_EQ(find("SUB/dir/\x95\x5C.JPG"), 0);
    EXPECT_EQ(find("_AUX.png"), 2);
    EXPECT_EQ(find("\x95\x5C.jpg"), 0);
    EXPECT_EQ(find("none"), -1);
}

TEST_F(AxtArc, ListsShiftJisNamesOfEveryFormatWhole) {
    const char* const expected[] = {"\x94\x5C\x83\x5C.bmp",
                                    "\x8A\xBF\x8E\x9A.bmp",
                                    "\x95\x5C_.txt",
                                    "\xE8\xA1\xA8\xF0\x9F_\x80_.txt",
                                    "__.txt",
                                    "_r.bmp"};
    const Bytes zip = Archive("zip-names"), withoutDirectory = Cut(zip, Find(zip, "PK\1\2"));
    for (const Bytes& bytes : {Archive("tar-names"), Archive("cab-names"), Archive("rar-names"),
                               zip, withoutDirectory}) {
        const auto list = List(Source(bytes));
        ASSERT_EQ(list.size(), std::size(expected)) << bytes.size();
        EXPECT_STREQ(list[0].path, "\x95\x5C\x8E\xA6\\") << bytes.size();
        for (size_t i = 0; i < list.size(); ++i)
            EXPECT_STREQ(list[i].fileName, expected[i]) << bytes.size();
    }
    EXPECT_EQ(List(Source(zip))[0].crc, 0x83DCEFB7u);  // of "1"
    // Names that are always Unicode: an accented letter, and what is a character in Shift-JIS.
    for (const char* name : {"7z-names", "rar5-names"})
        EXPECT_STREQ(List(Source(Archive(name))).back().fileName, "_r.bmp") << name;
    // On a system of UTF-8: the same name, and one with half a character.
    unpack::Member member{};
    member.name = "\x95\x5C\x8E\xA6\\\x94\x5C\x83\x5C.bmp";
    const unpack::ListedName listed = unpack::ListedNameOf(member, CP_UTF8);
    EXPECT_EQ(listed.folder + listed.file, "表示\\能ソ.bmp");
    member.name = "\x83\x5C\x83.bmp";
    EXPECT_EQ(unpack::ListedNameOf(member, CP_UTF8).file, "ソ_.bmp");
}

TEST_F(AxtArc, ExtractsToMemoryAndToFolders) {
    const std::string path = Written(folder, Archive("7z-large.gz"));
    const Source source(path);
    ASSERT_EQ(List(source).size(), std::size(kLarge));
    for (const size_t i : {3, 0, 2, 1})
        EXPECT_TRUE(Content(source, static_cast<LONG_PTR>(i)) == kLarge[i].Content()) << i;
    EXPECT_EQ(Extract(source, 4), susie::kInternalError);
    EXPECT_EQ(Extract(source, -1), susie::kInternalError);

    folder.Write(L"out\\large.txt", "the user's");
    std::string target = path.substr(0, path.rfind('\\')) + "\\out";
    const auto later = [](int done, int total, LONG_PTR part)
                           WINAPI -> int { return done >= total * part / 3; };
    for (const LONG_PTR thirds : {0, 1})
        EXPECT_EQ(plugin.getFile(path.c_str(), 2, target.data(), 0, later, thirds),
                  susie::kAborted);
    namespace fs = std::filesystem;
    EXPECT_EQ(fs::file_size(target + "\\large.txt"), 10u);
    EXPECT_EQ(std::distance(fs::directory_iterator(target), {}), 1);
    for (const LONG_PTR position : {1, 2})
        EXPECT_EQ(plugin.getFile(path.c_str(), position, target.data(), 0, nullptr, 0), 0);
    EXPECT_EQ(fs::file_size(target + "\\large.txt"), kLarge[2].size);
    EXPECT_EQ(fs::file_size(target + "\\small.txt"), kLarge[1].size);
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    GetFileAttributesExA((target + "\\small.txt").c_str(), GetFileExInfoStandard, &attributes);
    ULARGE_INTEGER ticks{
        {attributes.ftLastWriteTime.dwLowDateTime, attributes.ftLastWriteTime.dwHighDateTime}};
    EXPECT_EQ(static_cast<int64_t>(ticks.QuadPart / 10'000'000 - 11644473600), kFileTime);
}

TEST_F(AxtArc, TellsWhatIsMissing) {
    const auto condition = [&] {
        wchar_t text[64]{};
        const int kind = plugin.getLastCondition(text, 64);
        EXPECT_EQ(kind != susie::kConditionNone, text[0] != L'\0');
        return kind;
    };
    const Bytes encrypted = Archive("rar-encrypted");
    EXPECT_EQ(List(Source(encrypted)).size(), 1u);
    EXPECT_EQ(condition(), susie::kConditionNone);
    EXPECT_EQ(Extract(Source(encrypted), 0), susie::kUnknownFormat);
    EXPECT_EQ(condition(), susie::kConditionPasswordNeeded);
    List(Source(Archive("rar-hidden")), susie::kUnknownFormat);
    EXPECT_EQ(condition(), susie::kConditionDirectoryEncrypted);
    // Of the last file of a set nothing shows before its end what it is.
    const Bytes zip = Archive("zip-two");
    const std::string set =
        Written(folder, With(With(zip, zip.size() - 18, 2), 0, 'x'), L"set.zip");
    EXPECT_EQ(plugin.isSupported(set.c_str(), nullptr), 1);
    EXPECT_EQ(List(Source(set)).size(), 2u);
    EXPECT_EQ(condition(), susie::kConditionVolumeMissing);
    const std::string piece = Written(folder, Bytes(3000, 'x'), L"set.7z.002");
    EXPECT_EQ(plugin.isSupported(piece.c_str(), nullptr), 1);
    List(Source(piece), susie::kUnknownFormat);
    EXPECT_EQ(condition(), susie::kConditionVolumeMissing);
}

TEST_F(AxtArc, KeepsNothingOpenAndNoticesOtherData) {
    const Bytes first = Archive("tar-three-letters.gz");  // "one" and "two"
    const Bytes second =
        Damaged(Damaged(first, Find(first, "one"), 0x20), Find(first, "two"), 0x20);
    const std::string path = Written(folder, first);
    List(Source(path));
    EXPECT_EQ(Content(Source(path), 0), "one");
    const std::string other = Written(folder, second, L"other");
    EXPECT_TRUE(MoveFileExA(other.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(Content(Source(path), 1), "Two");
    EXPECT_TRUE(DeleteFileA(path.c_str()));
    EXPECT_EQ(Extract(Source(path), 1), susie::kReadError);

    // A block is told by its address alone when a member is asked for; its size was told before.
    Bytes block = first;
    EXPECT_EQ(Extract(Source(block), 1), susie::kInternalError);
    EXPECT_EQ(List(Source(block)).size(), 2u);
    EXPECT_EQ(Extract(Source(block), 0), susie::kSuccess);
    std::copy(second.begin(), second.end(), block.begin());
    EXPECT_EQ(Content(Source(block), 1), "Two");
    // Hosts move blocks, other archives take their places, and shorter ones too.
    EXPECT_EQ(List(Source(Archive("tar-two"))).size(), 2u);
    const Bytes moved = block;
    EXPECT_EQ(Content(Source(moved), 1), "Two");
    constexpr size_t kPage = 0x10000;
    auto* const pages =
        static_cast<uint8_t*>(VirtualAlloc(nullptr, 2 * kPage, MEM_COMMIT, PAGE_READWRITE));
    std::copy(block.begin(), block.end(), pages);
    Source freed(Bytes(2 * kPage));
    freed.address = reinterpret_cast<const char*>(pages);
    EXPECT_EQ(List(freed).size(), 2u);
    EXPECT_TRUE(VirtualFree(pages + kPage, kPage, MEM_DECOMMIT));
    pages[0] = 'x';  // no copy of the other block either
    EXPECT_EQ(Extract(freed, 1), susie::kInternalError);
    VirtualFree(pages, 0, MEM_RELEASE);

    // An archive within a file keeps its place for GetFile.
    Bytes behind(128);
    behind.insert(behind.end(), second.begin(), second.end());
    const std::string inner = Written(folder, behind);
    HLOCAL list = nullptr;
    EXPECT_EQ(plugin.getArchiveInfo(inner.c_str(), 128, 0, &list), susie::kSuccess);
    LocalFree(list);
    EXPECT_EQ(Content(Source(inner), 0), "One");
}

}  // namespace
}  // namespace tessary::spi::test
