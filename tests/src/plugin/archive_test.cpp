// Members of a bound archive: which are listed, getting them out, and the files that they become,
// under safe names and nowhere but in their folder.
#include "app/base/modGetFolder.h"
#include "plugin/member_file.h"
#include "plugin/member_file_name.h"
#include "plugin/private_folder.h"
#include "tests/src/plugin/plugin_test.h"
#include "tests/support/content_of.h"
#include "tests/support/links.h"

namespace tessary {
namespace {

using test::ArchiveOf;
using test::Raised;

bool PrivateFolderIsLeft() {
    WIN32_FIND_DATAW found;
    const std::wstring name = L"tessary_" + std::to_wstring(GetCurrentProcessId()) + L"_*";
    return static_cast<bool>(
        UniqueFind(FindFirstFileW((TemporaryFolder() + name).c_str(), &found)));
}

class ArchiveTest : public test::PluginTest {
  protected:
    ArchiveTest() { plugin_.SetDllName(Plugin(L"axtsa.spi")); }

    // Extracts a member, out of the file, out of a block and to a file that is there. A failure is
    // expected as its answer, 0 stands for none.
    void ExpectExtracted(const std::string& way, const std::string& member,
                         const std::string& expected, uint32_t inMemory = 0, uint32_t onDisk = 0) {
        const std::string content = ArchiveOf({{"a", "first"}, {"dir/b", member}}, way);
        const OwnedBlock block = Block(content);
        const std::wstring file = folder_.Write(LR"(o\m)", "former");
        std::string got;
        const auto extract = [&] { got = Extracted(2); };
        plugin_.SetMemoryHandle(block.Get(), L"x.tsa");
        EXPECT_EQ(Failure(extract), inMemory) << way;
        EXPECT_EQ(got, inMemory == 0 ? expected : "") << way;
        plugin_.SetFile(folder_.Write(NewName(L".tsa"), content));
        EXPECT_EQ(Failure(extract), inMemory) << way;
        EXPECT_EQ(got, inMemory == 0 ? expected : "") << way;
        EXPECT_EQ(Failure([&] { plugin_.DecodeArchive(2, folder_.Path(), LR"(o\m)", {}); }),
                  onDisk);
        EXPECT_EQ(test::ContentOf(file), onDisk == 0 ? member : "former") << way;
        EXPECT_EQ(plugin_.FileNumber(), 2) << "it is still bound";
        EXPECT_FALSE(PrivateFolderIsLeft()) << way;
    }
};

TEST_F(ArchiveTest, MembersComeOutInEveryWayOfAPlugin) {
    ExpectExtracted("no-disk\nextra-zero\n", "", std::string(1, '\0'));
    // Of unknown size: to the disk first, until one that knows none has the last word.
    for (const char* way :
         {"zero-fields\nno-disk\n", "zero-fields\ntrusts-size\n", "zero-fields\nno-memory\n", "",
          "position:offset\n", "no-memory\nno-overwrite\n", "no-memory\nstore-below\n"})
        ExpectExtracted(way, "second", "second");
    ExpectExtracted("extra-byte\n", "second", "second\xA5");
    const std::pair<const char*, uint32_t> failures[] = {
        {"crash:av:GetFile\n", 255},
        {"answer-after:GetFile:6\n", 6},
        {"answer:GetFile:0\n", susie::kBrokenData},
        {"no-memory\nno-disk\n", 21},
        {"no-memory\nanswer-after:GetFile:6\n", 6}};
    for (const auto& [way, result] : failures)
        ExpectExtracted(way, "second", "", result, result);
    // Where the disk was seen to work, a failure there is the answer.
    const int before = Calls(plugin_.DllName(), "GetFile");
    ExpectExtracted("zero-fields\nanswer-after:GetFile:8\n", "second", "", 8, 8);
    EXPECT_EQ(Calls(plugin_.DllName(), "GetFile"), before + 3);
    // Nothing is no block. Of the last, which extracts to disk, it is not told that it cannot
    // extract to memory.
    for (const char* way : {"", "fixed\n", "no-memory\n"}) {
        ExpectExtracted(way, "", "", susie::kBrokenData);
        EXPECT_EQ(Failure([&] { Extracted(2); }), static_cast<uint32_t>(susie::kBrokenData));
        EXPECT_EQ(plugin_.ErrorString(), L"圧縮ファイルの展開に失敗しました") << way;
    }
}

TEST(MemberChanged, IsADateThatAnArchiverHasWritten) {
    susie::FileInfo member{};
    for (const int seconds : {0, -1, 1, 315'532'800, INT_MIN}) {
        member.timestamp = seconds;
        EXPECT_EQ(MemberChanged(member), 0u) << seconds;
    }
    member.timestamp = 1'000'000'000;
    EXPECT_EQ(MemberChanged(member), 126'444'736'000'000'000u);
    member.timestamp = INT_MAX;
    EXPECT_EQ(MemberChanged(member), 137'919'572'470'000'000u);
}

TEST_F(ArchiveTest, WhatCannotBeExtractedIsTold) {
    BindArchive({});
    EXPECT_EQ(Failure([&] { Extracted(2, [](int, int) { return false; }); }), 1U);
    EXPECT_EQ(plugin_.Files(1), L"dir\\a");
    for (const int32_t outside : {0, 3}) {
        EXPECT_EQ(Raised([&] { Extracted(outside); }), kErrorInvalidMemberIndex);
        EXPECT_EQ(Raised([&] { plugin_.Files(outside); }), kErrorInvalidMemberIndex);
    }
    // The plug-in itself makes a file name of the member's.
    plugin_.SetFile(
        folder_.Write(L"x.tsa", ArchiveOf({{"..\\..\\out.tessary", "x"}}, "no-memory\n")));
    EXPECT_EQ(Raised([&] { Extracted(1); }), kErrorDecodingFailed);
    EXPECT_FALSE(PathExists(TemporaryFolder() + L"out.tessary") || PrivateFolderIsLeft());
}

TEST_F(ArchiveTest, ListsThatAreNoneOrEmpty) {
    const std::wstring bad = ArchiveFile("answer:GetArchiveInfo:0\n");
    EXPECT_EQ(Raised([&] { plugin_.SetFile(bad); }), kErrorNotSupported);
    EXPECT_EQ(Raised([&] { plugin_.FileNumber(); }), kErrorNothingBound);
    // An empty list is believed only of what the plug-in says it supports.
    for (const char* script : {"", "answer:IsSupported:0\n"}) {
        plugin_.SetDllName(Plugin(L"axtsa.spi", script, NewName(L".spi")));
        const uint32_t expected = *script == 0 ? 0 : kErrorNotSupported;
        const std::wstring file = folder_.Write(L"empty.tsa", "TSA\n\n");
        EXPECT_EQ(Raised([&] { plugin_.SetFile(file); }), expected);
        const OwnedBlock block = Block("TSA\n\n");
        EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(block.Get(), L"x.tsa"); }), expected);
    }
}

TEST_F(ArchiveTest, FoldersAreNoFiles) {
    plugin_.SetFile(folder_.Write(L"x.tsa", ArchiveOf({{"DIR/", ""},
                                                       {"dir/sub", ""},
                                                       {"dir/Sub/deep/a.jpg", "a"},
                                                       {"dir/empty", ""},
                                                       {"dir", "a file of that name"}})));
    std::wstring files;
    for (const ListedMember& file : plugin_.GetExpandFileList())
        files += std::to_wstring(file.position) + file.name + L' ';
    EXPECT_EQ(files, L"3dir\\Sub\\deep\\a.jpg 4dir\\empty 5dir ");
}

TEST(PrivateFolderTest, OnlyThoseOfEndedProcessesAreSweptAway) {
    const std::wstring number = L"tessary_4294967293";  // no process has an odd one
    const std::wstring abandoned = TemporaryFolder() + number + L"_1";
    std::filesystem::create_directories(abandoned + L"\\x");
    std::ofstream(std::filesystem::path(abandoned + L"\\x\\a")) << "x";
    SetFileAttributesW((abandoned + L"\\x\\a").c_str(), FILE_ATTRIBUTE_READONLY);
    const PrivateFolder own;
    for (const wchar_t* other : {L"", L"_x", L"_1_1"})
        std::filesystem::create_directories(TemporaryFolder() + number + other);
    RemoveAbandonedFolders();
    EXPECT_FALSE(PathExists(abandoned));
    EXPECT_TRUE(IsFolder(own.Target()));
    for (const wchar_t* other : {L"", L"_x", L"_1_1"})
        EXPECT_TRUE(RemoveDirectoryW((TemporaryFolder() + number + other).c_str())) << other;
}

TEST(MemberFileName, IsSafe) {
    const std::pair<std::wstring, std::wstring> table[] = {
        {L"a.jpg", L"a.jpg"},
        {LR"(dir\sub/写真 1.jpg)", LR"(dir\sub\写真 1.jpg)"},
        {LR"(..\..\x.bmp)", L"x.bmp"},
        {LR"(a\..\b\.\c)", LR"(a\b\c)"},
        {LR"(C:\Windows\x.dll)", LR"(Windows\x.dll)"},
        {L"c:x", L"x"},
        {LR"(\\server\share\x)", LR"(server\share\x)"},
        {L"/etc/x", LR"(etc\x)"},
        {LR"(\\?\C:\x)", LR"(_\C_\x)"},
        {L"file:stream", L"file_stream"},
        {L"a*?<>|\"\t\x01z", L"a________z"},
        {LR"(x. . \y.jpg. )", LR"(x\y.jpg)"},
        {LR"(...\.. \x)", LR"(_\_\x)"},
        {L"con", L"_con"},
        {LR"(NUL\aux.jpg)", LR"(_NUL\_aux.jpg)"},
        {L"COM1 .tar.gz", L"_COM1 .tar.gz"},
        {L"lpt\u00B9.x", L"_lpt\u00B9.x"},
        {L"CONIN$", L"_CONIN$"},
        {L"com.jpg", L"com.jpg"},
        {L"COM10", L"COM10"},
        {L"...a", L"...a"},
        // Nothing that could be a file.
        {L"", L""},
        {L"..", L""},
        {LR"(dir\)", L""},
        {LR"(dir\..)", L""},
        {L"C:", L""},
    };
    for (const auto& [member, safe] : table)
        EXPECT_EQ(SafeMemberName(member).value_or(L""), safe) << member;
    const std::wstring kept = *SafeMemberName(std::wstring(400, L'x') + L".jpeg");
    EXPECT_EQ(kept, std::wstring(235, L'x') + L".jpeg");
    EXPECT_EQ(SafeMemberName(std::wstring(239, L'x') + L"\U0001F600"), std::wstring(239, L'x'));
    EXPECT_EQ(SafeMemberName(L"a." + std::wstring(300, L'x'))->size(), 240U);
}

TEST(MemberFileName, IsEachMembersOwn) {
    MemberFileNames names;
    std::wstring given;
    for (const wchar_t* member : {LR"(d\a.jpg)", LR"(D/A.JPG)", L"a.jpg", LR"(d\a (2).jpg)",
                                  LR"(d\a.jpg)", L"..", L"n", L"N"})
        given += names.NameFor(member).value_or(L"-") + L'|';
    EXPECT_EQ(given, LR"(d\a.jpg|D\A (2).JPG|a.jpg|d\a (2) (2).jpg|d\a (3).jpg|-|n|N (2)|)");
}

TEST(MemberFile, LiesInFoldersOfItsOwn) {
    const test::TemporaryFolder folder;
    const std::wstring target = folder.Path() + L"elsewhere";
    std::filesystem::create_directories(target);
    std::filesystem::create_directories(folder.Path() + LR"(o\n)");
    folder.Write(LR"(o\m)");
    ASSERT_TRUE(test::MakeFolderLink(folder.Path() + LR"(o\link)", target));
    EXPECT_EQ(WriteMemberFile(folder.Path(), LR"(o\new\m)", {}), 0U);
    for (const wchar_t* refused : {LR"(o\link\m)", LR"(o\link\sub\m)", LR"(o\n)", LR"(o\m\x)"})
        EXPECT_NE(WriteMemberFile(folder.Path(), refused, {}), 0U) << refused;
    EXPECT_NE(WriteMemberFile(folder.Path() + L"gone", L"m", {}), 0U);
    EXPECT_TRUE(std::filesystem::is_empty(target));
}

}  // namespace
}  // namespace tessary
