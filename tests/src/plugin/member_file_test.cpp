// Extracted members on disk: under safe names, and nowhere but in their folder.
#include "plugin/member_file.h"

#include <gtest/gtest.h>

#include "plugin/member_file_name.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

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
