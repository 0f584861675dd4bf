// Extracted members on disk: under safe names, and nowhere but in their folder.
#include <algorithm>

#include "plugin/member_file.h"
#include "plugin/member_file_name.h"
#include "tests/src/plugin/plugin_test.h"
#include "tests/support/content_of.h"
#include "tests/support/links.h"

namespace tessary {
namespace {

using test::ContentOf;

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

class MemberFileTest : public test::PluginTest {
  protected:
    MemberFileTest() { plugin_.SetDllName(Plugin(L"axtsa.spi")); }
    // What extracting the only member writes; the error's number when that fails.
    std::string Extracted(const std::string& data, const std::string& directives) {
        plugin_.SetFile(
            folder_.Write(NewName(L".tsa"), test::ArchiveOf({{"m", data}}, directives)));
        const uint32_t error =
            test::Raised([&] { plugin_.DecodeArchive(1, folder_.Path(), LR"(o\m)", {}); });
        return error == 0 ? ContentOf(folder_.Path() + LR"(o\m)") : std::to_string(error);
    }
};

TEST_F(MemberFileTest, IsTheMemberAndNothingElse) {
    EXPECT_EQ(Extracted("", "no-disk\nextra-zero\n"), "");
    EXPECT_EQ(Extracted("first", ""), "first");
    EXPECT_EQ(Extracted("second", "extra-byte\n"), "second");
    EXPECT_EQ(Extracted("third", "zero-fields\n"), "third");
    EXPECT_EQ(Extracted("fourth", "no-memory\nstore-below\n"), "fourth");
    // What fails leaves what is there.
    for (const char* failure :
         {"answer:GetFile:0\n", "crash:av:GetFile\n", "no-memory\nno-disk\n"}) {
        EXPECT_EQ(Extracted("fifth", failure), std::to_string(kErrorDecodingFailed)) << failure;
        EXPECT_EQ(ContentOf(folder_.Path() + LR"(o\m)"), "fourth") << failure;
    }
    EXPECT_EQ(Extracted("", ""), "");
    EXPECT_EQ(Extracted("", "no-memory\n"), "");
    std::filesystem::create_directories(folder_.Path() + LR"(o\n)");
    EXPECT_NE(WriteMemberFile(folder_.Path(), LR"(o\n)", {}), 0u);
    EXPECT_NE(WriteMemberFile(folder_.Path(), LR"(o\m\x)", {}), 0u) << "below a file";
    EXPECT_NE(WriteMemberFile(folder_.Path() + L"gone", L"m", {}), 0u);
}

TEST_F(MemberFileTest, LinksAreNotFollowed) {
    const std::wstring target = folder_.Path() + L"elsewhere";
    std::filesystem::create_directories(target);
    std::filesystem::create_directories(folder_.Path() + L"o");
    ASSERT_TRUE(test::MakeFolderLink(folder_.Path() + LR"(o\link)", target));
    EXPECT_NE(WriteMemberFile(folder_.Path(), LR"(o\link\m)", {}), 0u);
    EXPECT_NE(WriteMemberFile(folder_.Path(), LR"(o\link\sub\m)", {}), 0u);
    EXPECT_TRUE(std::filesystem::is_empty(target));
}

}  // namespace
}  // namespace tessary
