#include <algorithm>
#include <filesystem>

#include "plugins/axtessarc/member_name.h"
#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/plugins_bundled/made_archives.h"
#include "tests/plugins_bundled/made_rar.h"
#include "tests/support/temporary_folder.h"

namespace tessary::spi::test {
namespace {

using unpack::test::File;
using unpack::test::Kind;
using unpack::test::MakeArchive;
using unpack::test::SomeText;

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
    std::string Write(const Bytes& bytes, const std::wstring& name = L"archive") const {
        const std::wstring path =
            folder.Write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        return {path.begin(), path.end()};
    }

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

    int Extract(const Source& source, LONG_PTR position, std::string& content,
                susie::ProgressCallback progress = nullptr) const {
        HLOCAL block = nullptr;
        const int result = plugin.getFile(source.address, position, reinterpret_cast<char*>(&block),
                                          source.flag | susie::kDestinationMemory, progress, 0);
        EXPECT_EQ(block != nullptr, result == susie::kSuccess);
        if (block == nullptr) return result;
        EXPECT_EQ(LocalFlags(block) & LMEM_LOCKCOUNT, 0u);
        content.assign(static_cast<const char*>(LocalLock(block)), LocalSize(block));
        LocalUnlock(block);
        LocalFree(block);
        return result;
    }

    static int __stdcall Stop(int, int, LONG_PTR) { return 1; }

    const LoadedArchivePlugin plugin{"axtessarc"};
    const tessary::test::TemporaryFolder folder;
    const std::vector<File> files{
        {"a.txt", SomeText(1'200'000, 1)}, {"Sub/B.txt", SomeText(1000, 2)}, {"empty.txt", ""}};
};

TEST_F(AxtArc, IntroducesItselfAndTellsItsFiles) {
    char text[256];
    plugin.getPluginInfo(0, text, sizeof text);
    EXPECT_STREQ(text, "00AM");
    int number = 2;
    for (; plugin.getPluginInfo(number, text, sizeof text) > 0; ++number)
        EXPECT_EQ(number % 2 == 0, std::string(text).starts_with("*.")) << text;
    EXPECT_EQ(number, 16);

    Bytes bytes = MakeArchive(Kind::kTarGzip, files);
    const std::string path = Write(bytes);
    EXPECT_EQ(plugin.isSupported(path.c_str(), nullptr), 1);
    bytes.resize(susie::kHeaderBlockSize);
    EXPECT_EQ(plugin.isSupported(nullptr, bytes.data()), 1);
    const Bytes junk(susie::kHeaderBlockSize, 0x20);
    EXPECT_EQ(plugin.isSupported(path.c_str(), junk.data()), 0);
    List(Source(junk), susie::kUnknownFormat);
    List(Source(path + "missing"), susie::kReadError);
}

TEST_F(AxtArc, ListsNamesThatEveryHostCanUse) {
    const std::string longName(300, 'n');
    std::string doubleBytes = "x";
    for (int i = 0; i < 150; ++i)
        doubleBytes += "\x83\x5C";  // its second byte is a backslash's
    Bytes bytes = MakeArchive(Kind::kZip, {{"sub/dir\\\x95\x5C.jpg", "1"},
                                           {"../C:/a<b>.txt. ", "2"},
                                           {"/aux.png", "3"},
                                           {longName + "/" + longName + ".jpeg", "4"},
                                           {doubleBytes + ".bmp", "5"},
                                           {"\xF0\x9F\x98\x80\xE8\xA1\xA8\xEF\xA8\x99.gif", "6"},
                                           {"\xC3\xBD\xC4\xAF.gif", "7"},
                                           {"caf\xE9.gif", "9"},
                                           {"\xE3\x81\x8B\xE3\x82\x99u\xCC\x88.gif", "0"},
                                           {"\xC3\xBD\xC4\xBF.gif", "8"}});
    // The directory says of the last name that it is UTF-8.
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    bytes[text.rfind("PK\1\2") + 9] |= 8;
    const auto list = List(Source(bytes));
    ASSERT_EQ(list.size(), 10u);
    const std::string expected[][2] = {
        {"sub\\dir\\", "\x95\x5C.jpg"},
        {"__\\C_\\", "a_b_.txt__"},
        {"", "_aux.png"},
        {std::string(198, 'n') + "\\", std::string(194, 'n') + ".jpeg"},
        {"", doubleBytes.substr(0, 195) + ".bmp"},
        {"", "__\x95\x5C\xFB\x7E.gif"},
        {"", "\xC3\xBD\xC4\xAF.gif"},
        {"", "caf_.gif"},       // Latin-1: half a character in Shift-JIS
        {"", "\x82\xAA_.gif"},  // decomposed, as macOS does
        {"", "__.gif"},
    };
    for (size_t i = 0; i < list.size(); ++i) {
        EXPECT_EQ(list[i].path, expected[i][0]) << i;
        EXPECT_EQ(list[i].fileName, expected[i][1]) << i;
        EXPECT_EQ(list[i].fileSize, 1u);
        EXPECT_EQ(list[i].timestamp, unpack::test::kFileTime);
        susie::FileInfo found{};
        const std::string name = std::string(list[i].path) + list[i].fileName;
        EXPECT_EQ(plugin.getFileInfo(Source(bytes).address, Source(bytes).length, name.c_str(),
                                     susie::kSourceMemory, &found),
                  susie::kSuccess);
        EXPECT_EQ(found.position, list[i].position);
    }
    const auto find = [&](const char* name) {
        susie::FileInfo found{};
        return plugin.getFileInfo(Source(bytes).address, Source(bytes).length, name,
                                  susie::kSourceMemory, &found) == susie::kSuccess
                   ? static_cast<int>(found.position)
                   : -1;
    };
    EXPECT_EQ(find("SUB/dir/\x95\x5C.JPG"), 0);
    EXPECT_EQ(find("_AUX.png"), 2);
    EXPECT_EQ(find("\x95\x5C.jpg"), 0);
    EXPECT_EQ(find("none"), -1);
}

TEST_F(AxtArc, ListsShiftJisNamesOfEveryFormatWhole) {
    for (const Kind kind : {Kind::kTar, Kind::kCab, Kind::kRar, Kind::kZip}) {
        const std::vector<File> japanese{{"\x95\x5C\x8E\xA6\\\x94\x5C\x83\x5C.bmp", "1"},
                                         {"\x8A\xBF\x8E\x9A.bmp", "2"}};
        Bytes bytes = MakeArchive(kind, japanese);
        if (kind == Kind::kZip) {  // cut short before its directory
            constexpr std::string_view kRecordMark = "PK\1\2";
            bytes.erase(
                std::search(bytes.begin(), bytes.end(), kRecordMark.begin(), kRecordMark.end()),
                bytes.end());
        }
        const auto list = List(Source(bytes));
        ASSERT_EQ(list.size(), 2u) << static_cast<int>(kind);
        EXPECT_STREQ(list[0].path, "\x95\x5C\x8E\xA6\\") << static_cast<int>(kind);
        EXPECT_STREQ(list[0].fileName, "\x94\x5C\x83\x5C.bmp") << static_cast<int>(kind);
        EXPECT_STREQ(list[1].fileName, "\x8A\xBF\x8E\x9A.bmp") << static_cast<int>(kind);
    }
    // Names that are always Unicode: an accented letter, and what is a character in Shift-JIS.
    EXPECT_STREQ(List(Source(MakeArchive(Kind::kSevenZip, {{"\xE9r.bmp", "1"}})))[0].fileName,
                 "_r.bmp");
    EXPECT_STREQ(List(Source(MakeArchive(Kind::kRar5, {{"\xC3\xA9r.bmp", "1"}})))[0].fileName,
                 "_r.bmp");
    // On a system of UTF-8: the same name, and one with half a character.
    unpack::Member member{};
    member.name = "\x95\x5C\x8E\xA6\\\x94\x5C\x83\x5C.bmp";
    const unpack::ListedName listed = unpack::ListedNameOf(member, CP_UTF8);
    EXPECT_EQ(listed.folder + listed.file, "表示\\能ソ.bmp");
    member.name = "\x83\x5C\x83.bmp";
    EXPECT_EQ(unpack::ListedNameOf(member, CP_UTF8).file, "ソ_.bmp");
}

TEST_F(AxtArc, ExtractsToMemoryAndToFolders) {
    const std::string path = Write(MakeArchive(Kind::kSevenZip, files));
    const Source source(path);
    const auto list = List(source);
    ASSERT_EQ(list.size(), 3u);
    std::string content;
    for (const size_t i : {2, 0, 1}) {
        const auto position = static_cast<LONG_PTR>(list[i].position);
        EXPECT_EQ(Extract(source, position, content), susie::kSuccess);
        EXPECT_EQ(content, files[i].content) << i;
    }
    EXPECT_EQ(Extract(source, 3, content), susie::kInternalError);
    EXPECT_EQ(Extract(source, -1, content), susie::kInternalError);

    folder.Write(L"out\\a.txt", "the user's");
    std::string target = path.substr(0, path.rfind('\\')) + "\\out";
    EXPECT_EQ(plugin.getFile(path.c_str(), 0, target.data(), 0, Stop, 0), susie::kAborted);
    const auto atOneThird = [](int done, int total, LONG_PTR)
                                WINAPI -> int { return done > total / 3; };
    EXPECT_EQ(plugin.getFile(path.c_str(), 0, target.data(), 0, atOneThird, 0), susie::kAborted);
    namespace fs = std::filesystem;
    EXPECT_EQ(fs::file_size(target + "\\a.txt"), 10u);
    EXPECT_EQ(std::distance(fs::directory_iterator(target), {}), 1);
    for (const LONG_PTR position : {0, 1})
        EXPECT_EQ(plugin.getFile(path.c_str(), position, target.data(), 0, nullptr, 0), 0);
    EXPECT_EQ(fs::file_size(target + "\\a.txt"), files[0].content.size());
    EXPECT_EQ(fs::file_size(target + "\\B.txt"), files[1].content.size());
    WIN32_FILE_ATTRIBUTE_DATA attributes{};
    GetFileAttributesExA((target + "\\B.txt").c_str(), GetFileExInfoStandard, &attributes);
    ULARGE_INTEGER ticks{
        {attributes.ftLastWriteTime.dwLowDateTime, attributes.ftLastWriteTime.dwHighDateTime}};
    EXPECT_EQ(static_cast<int64_t>(ticks.QuadPart / 10'000'000 - 11644473600),
              unpack::test::kFileTime);
}

TEST_F(AxtArc, TellsWhatIsMissing) {
    using unpack::test::MakeRar;
    const auto condition = [&] {
        wchar_t text[64]{};
        const int kind = plugin.getLastCondition(text, 64);
        EXPECT_EQ(kind != susie::kConditionNone, text[0] != L'\0');
        return kind;
    };
    std::string content;
    const Bytes encrypted = MakeRar(files, 0, unpack::test::kRarEncryptedFile);
    EXPECT_EQ(List(Source(encrypted)).size(), 3u);
    EXPECT_EQ(condition(), susie::kConditionNone);
    EXPECT_EQ(Extract(Source(encrypted), 0, content), susie::kUnknownFormat);
    EXPECT_EQ(condition(), susie::kConditionPasswordNeeded);
    List(Source(MakeRar(files, unpack::test::kRarEncryptedHeaders)), susie::kUnknownFormat);
    EXPECT_EQ(condition(), susie::kConditionDirectoryEncrypted);
    // Of the last file of a set nothing shows before its end what it is.
    Bytes zip = MakeArchive(Kind::kZip, files);
    zip[zip.size() - 18] = 2;  // the disk's number
    zip[0] = 'x';
    const std::string set = Write(zip, L"set.zip");
    EXPECT_EQ(plugin.isSupported(set.c_str(), nullptr), 1);
    EXPECT_EQ(List(Source(set)).size(), 3u);
    EXPECT_EQ(condition(), susie::kConditionVolumeMissing);
    const std::string piece = Write(Bytes(3000, 'x'), L"set.7z.002");
    EXPECT_EQ(plugin.isSupported(piece.c_str(), nullptr), 1);
    List(Source(piece), susie::kUnknownFormat);
    EXPECT_EQ(condition(), susie::kConditionVolumeMissing);
}

TEST_F(AxtArc, KeepsNothingOpenAndNoticesOtherData) {
    std::string content;
    const std::string path = Write(MakeArchive(Kind::kTar, {{"a", "one"}, {"b", "two"}}));
    List(Source(path));
    EXPECT_EQ(Extract(Source(path), 0, content), susie::kSuccess);
    EXPECT_EQ(content, "one");
    const std::string other =
        Write(MakeArchive(Kind::kTar, {{"a", "ONE"}, {"b", "TWO"}}), L"other");
    EXPECT_TRUE(MoveFileExA(other.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(Extract(Source(path), 1, content), susie::kSuccess);
    EXPECT_EQ(content, "TWO");
    EXPECT_TRUE(DeleteFileA(path.c_str()));
    EXPECT_EQ(Extract(Source(path), 1, content), susie::kReadError);

    // A block is told by its address alone when a member is asked for; its size was told before.
    Bytes block = MakeArchive(Kind::kTar, {{"a", "one"}, {"b", "two"}});
    EXPECT_EQ(Extract(Source(block), 1, content), susie::kInternalError);
    EXPECT_EQ(List(Source(block)).size(), 2u);
    EXPECT_EQ(Extract(Source(block), 0, content), susie::kSuccess);
    const Bytes second = MakeArchive(Kind::kTar, {{"a", "ONE"}, {"b", "TWO"}});
    ASSERT_EQ(second.size(), block.size());
    std::copy(second.begin(), second.end(), block.begin());
    EXPECT_EQ(Extract(Source(block), 1, content), susie::kSuccess);
    EXPECT_EQ(content, "TWO");
    // Hosts move blocks, other archives take their places, and shorter ones too.
    EXPECT_EQ(List(Source(Bytes(MakeArchive(Kind::kTar, files)))).size(), 3u);
    const Bytes moved = block;
    EXPECT_EQ(Extract(Source(moved), 1, content), susie::kSuccess);
    EXPECT_EQ(content, "TWO");
    constexpr size_t kPage = 0x10000;
    auto* const pages =
        static_cast<uint8_t*>(VirtualAlloc(nullptr, 2 * kPage, MEM_COMMIT, PAGE_READWRITE));
    Bytes two = block;
    two.resize(2 * kPage);
    std::copy(two.begin(), two.end(), pages);
    Source freed(two);
    freed.address = reinterpret_cast<const char*>(pages);
    EXPECT_EQ(List(freed).size(), 2u);
    EXPECT_TRUE(VirtualFree(pages + kPage, kPage, MEM_DECOMMIT));
    pages[0] = 'x';  // no copy of the other block either
    EXPECT_EQ(Extract(freed, 1, content), susie::kInternalError);
    VirtualFree(pages, 0, MEM_RELEASE);

    // An archive within a file keeps its place for GetFile.
    Bytes behind(128);
    behind.insert(behind.end(), second.begin(), second.end());
    const std::string inner = Write(behind);
    HLOCAL list = nullptr;
    EXPECT_EQ(plugin.getArchiveInfo(inner.c_str(), 128, 0, &list), susie::kSuccess);
    LocalFree(list);
    EXPECT_EQ(Extract(Source(inner), 0, content), susie::kSuccess);
    EXPECT_EQ(content, "ONE");
}

}  // namespace
}  // namespace tessary::spi::test
