// Text, paths and the command line: what the rest of the program takes for granted.
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "app/base/command_line.h"
#include "app/base/distant_file.h"
#include "app/base/extension_filter.h"
#include "app/base/fetch_file.h"
#include "app/base/load_refusal.h"
#include "app/base/modGetFolder.h"
#include "app/base/modScreenCaps.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "helpers/system/system_library.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

TEST(TextTest, ConvertsExactlyOrNotAtAll) {
    const std::wstring kana = L"表示ソ.bmp";  // two characters with a trail byte 0x5C in Shift-JIS
    const std::string ansi = ToAnsi(kana);
    EXPECT_EQ(ansi, "\x95\x5C\x8E\xA6\x83\x5C.bmp");
    EXPECT_EQ(FromAnsi(ansi), kana);
    EXPECT_EQ(ToAnsiExact(kana), ansi);
    EXPECT_EQ(ToAnsiExact(L"사진.bmp"), std::nullopt);
    EXPECT_EQ(ToAnsiExact(L"\U0001F600.bmp"), std::nullopt);
    EXPECT_EQ(ToAnsiExact(L"caf\u00E9.bmp"), std::nullopt);  // would become a plain e
    EXPECT_EQ(ToAnsi(L""), "");

    EXPECT_EQ(FromAnsi(ansi, CP_UTF8), kana);
    EXPECT_EQ(FromAnsi("\xE8\xA1\xA8.bmp", CP_UTF8), L"表.bmp");
    EXPECT_EQ(FromAnsi("\xFF.bmp", CP_UTF8), L"\uFFFD.bmp");
}

TEST(TextTest, SplitsAndFilters) {
    std::vector<std::wstring> pieces;
    EXPECT_EQ(SplitText(L"a,,b,", L',', pieces), 4);
    EXPECT_EQ(pieces, (std::vector<std::wstring>{L"a", L"", L"b", L""}));
    EXPECT_EQ(SplitText(L"", L',', pieces), 1);
    EXPECT_EQ(SplitText(L"aĀb", 0x100, pieces), 0);
    EXPECT_TRUE(pieces.empty());

    const std::pair<const wchar_t*, const wchar_t*> wanted[] = {{L"bmp jpg", L"ab"},
                                                                {L"bmp  PNG", L"acde"},
                                                                {L"", L"abcde"},
                                                                {L"*.bmp .jpg", L"ab"},
                                                                {L"*.*", L"abcde"}};
    for (const auto& [extensions, names] : wanted) {
        for (const wchar_t* const name : {L"a.BMP", L"b.Jpg", L"c.png", L"d", L"e.x\\f"})
            EXPECT_EQ(ExtensionFilter(extensions).Wants(name), wcschr(names, name[0]) != nullptr)
                << extensions << name;
    }
}

TEST(TextTest, MatchesWildcards) {
    // name, what matches it, what does not
    const wchar_t* const table[][3] = {{L"A.JPG", L"*.JPG", L"*.JP"},
                                       {L"A.B.JPG", L"*.JPG", L"*.B"},
                                       {L"ABC", L"A?C", L"A?BC"},
                                       {L"AXXBXXC", L"A*B*C", L"A*B*D"},
                                       {L"", L"*", L"?"},
                                       {L"ANY", L"***", L"*A*A*"}};
    for (const auto& [name, pattern, other] : table) {
        EXPECT_TRUE(MatchesWildcard(name, pattern)) << name;
        EXPECT_FALSE(MatchesWildcard(name, other)) << name;
    }
    EXPECT_FALSE(MatchesWildcard(L"AAAAAAAAAAAAAAAAAAAAAAAAB", L"*A*A*A*A*A*A*A*C"));
}

TEST(PathsTest, BackslashRulesKeepTheirOddEnds) {
    const wchar_t* const table[][3] = {
        // path, with, without
        {L"", L"", L""},
        {L"C:", L"C:", L"C"},
        {L"C:\\", L"C:\\", L"C:"},
        {L"C:\\a", L"C:\\a\\", L"C:\\a"},
        {L"C:\\a\\", L"C:\\a\\", L"C:\\a"},
    };
    for (const auto& [path, with, without] : table) {
        EXPECT_EQ(AddBackslash(path), with);
        EXPECT_EQ(RemoveBackslash(path), without);
    }
}

TEST(PathsTest, ListsFilesByTheirNamesAndMarks) {
    const test::TemporaryFolder folder;
    const std::wstring plain = folder.Write(L"a long name.JPG");
    folder.Write(L"sub\\other.jpg");
    for (const DWORD mark : {FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_SYSTEM}) {
        const std::wstring path = folder.Write(std::to_wstring(mark) + L"longer.jpg_backup");
        ASSERT_TRUE(SetFileAttributesW(path.c_str(), mark));
    }
    EXPECT_EQ(FilesInFolder(folder.Path(), L"*.*").size(), 3U);
    EXPECT_EQ(FilesInFolder(folder.Path(), L"*.jpg"), std::vector{plain}) << "not short names";
    bool whole = true;
    EXPECT_EQ(PlainFilesInFolder(folder.Path(), L"*", &whole), std::vector{plain});
    EXPECT_TRUE(PlainFilesInFolder(folder.Path(), L"*.none", &whole).empty());
    EXPECT_TRUE(whole);
    PlainFilesInFolder(folder.Path() + L"gone", L"*", &whole);
    EXPECT_FALSE(whole);

    const std::wstring distant = folder.Deep() + L"사진\U0001F600.bmp";
    CopyFileW(plain.c_str(), ExtendedPath(distant).c_str(), TRUE);
    EXPECT_TRUE(PathExists(distant) && !IsFolder(distant));
    EXPECT_EQ(FilesInFolder(FolderOf(distant)), std::vector{distant});
}

TEST(LoadRefusalTest, TellsProtectionFromFaultsOfTheFile) {
    // Virus, signature, rules of the administrator's, application control, reputation.
    for (const DWORD error : {225u, 226u, 577u, 1260u, 4551u, 4556u, 4582u}) {
        EXPECT_TRUE(IsBlockedBySystem(error)) << error;
        EXPECT_NE(LoadRefusalText(error).find(L"ブロック"), std::wstring::npos) << error;
    }
    for (const DWORD error : {2u, 5u, 32u, 126u, 193u, 998u, 1114u, 4560u})
        EXPECT_FALSE(IsBlockedBySystem(error)) << error;
    EXPECT_EQ(LoadRefusalText(126), L"必要なDLLがありません (エラー 126)");
    EXPECT_EQ(LoadRefusalText(998), L"読み込めません (エラー 998)");
    EXPECT_EQ(LoadRefusalText(0), L"");
}

// One beside the program is what the system answers first for a name alone.
TEST(SystemLibraryTest, TakesNoLibraryFromTheProgramsFolder) {
    const std::wstring planted = AppFolder() + L"tessary_planted.dll";
    CopyFileW((AppFolder() + LR"(plugins\sibling.dll)").c_str(), planted.c_str(), FALSE);
    const HMODULE byName = LoadLibraryW(L"tessary_planted.dll");
    EXPECT_NE(byName, nullptr);
    EXPECT_EQ(SystemLibrary(L"tessary_planted.dll"), nullptr);  // though it is in the process, too
    EXPECT_NE(SystemFunction<void*>(L"mpr.dll", "WNetGetConnectionW"), nullptr);
    FreeLibrary(byName);
    DeleteFileW(planted.c_str());
}

TEST(DistantFileTest, MarksAndErrorsAreToldFromOthers) {
    // Offline; recalled when opened; when read. Kept here or not, compressed, sparse, a link: no.
    for (const unsigned long mark : {0x1000ul, 0x40000ul, 0x400000ul})
        EXPECT_TRUE(LiesElsewhere(mark | 0x20)) << mark;
    for (const unsigned long other :
         {0x20ul, 0x80000ul, 0x100000ul, 0x800ul, 0x200ul, 0x400ul, 0xFFFFFFFFul})
        EXPECT_FALSE(LiesElsewhere(other)) << other;
    const test::TemporaryFolder folder;
    EXPECT_FALSE(IsNotOnThisDisk(folder.Write(L"a")));
    EXPECT_FALSE(IsNotOnThisDisk(folder.Path() + L"gone"));
    for (const unsigned long error : {358ul, 362ul, 404ul, 4350ul})
        EXPECT_TRUE(IsFetchError(error)) << error;
    for (const unsigned long error : {5ul, 32ul, 367ul, 384ul, 400ul, 403ul})
        EXPECT_FALSE(IsFetchError(error)) << error;
    const auto asked = [](int, int) { return true; };
    EXPECT_EQ(FetchFile(folder.Path() + L"a", asked), 0ul);
    EXPECT_EQ(FetchFile(folder.Path() + L"gone", asked), 2ul);
}

using Names = std::vector<std::wstring>;

class CommandLineTest : public testing::Test {
  protected:
    test::TemporaryFolder folder_;
    std::wstring spaced_ = folder_.Write(L"写真 一.jpg");
    std::wstring plain_ = folder_.Write(L"b.jpg");
};

TEST_F(CommandLineTest, NamesEndAsEachSystemHasThem) {
    folder_.Write(L"sub\\inner.jpg");
    const std::wstring noDot = folder_.Write(L"nodot");
    const std::wstring quoted = L'"' + spaced_ + L'"';
    const std::tuple<std::wstring, uint32_t, Names> table[] = {
        {quoted + L' ' + plain_, kPlatformNT, {spaced_, plain_}},
        {spaced_, kPlatformNT, {}},
        {L"  " + plain_ + L"   \"" + spaced_, kPlatformNT, {plain_, spaced_}},
        {L"\"\" \" " + plain_, kPlatformNT, {}},
        {folder_.Path(), kPlatformNT, {plain_, noDot, spaced_}},
        {plain_ + L' ' + plain_, kPlatformWindows95, {plain_, plain_}},
        {quoted, kPlatformWindows95, {}},
        {plain_, 0, {}}};
    for (const auto& [line, platform, expected] : table) {
        Names names{L"first"};
        EXPECT_EQ(ParseCommandLine(line, platform, names), std::ssize(expected));
        EXPECT_EQ(names[0], L"first") << "what is there stays";
        names.erase(names.begin());
        if (line == folder_.Path()) std::ranges::sort(names);
        EXPECT_EQ(names, expected) << line << ' ' << platform;
    }
}

TEST_F(CommandLineTest, NamesAreWholeBeforeTheFolderIsLeft) {
    wchar_t former[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, former);
    SetCurrentDirectoryW(folder_.Path().c_str());
    const Names names = CommandLineNames(L"b.jpg none.jpg", kPlatformNT);
    SetCurrentDirectoryW(former);
    EXPECT_EQ(names, (Names{plain_, folder_.Path() + L"none.jpg"}));
    std::vector<FoundFile> files;
    EXPECT_EQ(AppendNamedFiles(names, files).missing, 1);
    EXPECT_EQ(PathsOf(files), Names{plain_});
}

}  // namespace
}  // namespace tessary
