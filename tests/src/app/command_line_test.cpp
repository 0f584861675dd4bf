#include "app/base/command_line.h"

#include <gtest/gtest.h>

#include "app/base/modScreenCaps.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using Names = std::vector<std::wstring>;

class CommandLineTest : public testing::Test {
  protected:
    Names Parse(const std::wstring& line, uint32_t platform = kPlatformNT) const {
        Names names;
        const int added = ParseCommandLine(line, platform, names);
        EXPECT_EQ(added, static_cast<int>(names.size()));
        return names;
    }

    test::TemporaryFolder folder_;
    std::wstring spaced_ = folder_.Write(L"写真 一.jpg");
    std::wstring plain_ = folder_.Write(L"b.jpg");
};

TEST_F(CommandLineTest, QuotedNamesMayHoldBlanksOnNT) {
    EXPECT_EQ(Parse(L'"' + spaced_ + L"\" " + plain_), (Names{spaced_, plain_}));
    EXPECT_EQ(Parse(spaced_), Names{});
    EXPECT_EQ(Parse(L"  " + plain_ + L"   \"" + spaced_), (Names{plain_, spaced_}));
    EXPECT_EQ(Parse(L"\"\" \" " + plain_), Names{});
}

TEST_F(CommandLineTest, EveryBlankSeparatesOn95) {
    EXPECT_EQ(Parse(plain_ + L" " + plain_, kPlatformWindows95), (Names{plain_, plain_}));
    EXPECT_EQ(Parse(L'"' + spaced_ + L'"', kPlatformWindows95), Names{});
    EXPECT_EQ(Parse(plain_, 0), Names{});
}

TEST_F(CommandLineTest, FolderGivesItsPlainFiles) {
    folder_.Write(L"sub\\inner.jpg");
    const std::wstring noDot = folder_.Write(L"nodot");
    Names names = Parse(folder_.Path());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Names{plain_, noDot, spaced_}));
}

TEST_F(CommandLineTest, NamesAreWholeBeforeTheFolderIsLeft) {
    wchar_t former[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, former);
    SetCurrentDirectoryW(folder_.Path().c_str());
    const Names names = CommandLineNames(L"b.jpg none.jpg", kPlatformNT);
    SetCurrentDirectoryW(former);
    EXPECT_EQ(names, (Names{plain_, folder_.Path() + L"none.jpg"}));
    Names files;
    EXPECT_EQ(AppendNamedFiles(names, files).missing, 1);
    EXPECT_EQ(files, Names{plain_});
}

TEST_F(CommandLineTest, AddsBehindWhatIsThere) {
    Names names{L"first"};
    EXPECT_EQ(ParseCommandLine(plain_ + L" missing", kPlatformNT, names), 1);
    EXPECT_EQ(names, (Names{L"first", plain_}));
}

}  // namespace
}  // namespace tessary
