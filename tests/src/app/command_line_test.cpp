#include "app/base/command_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "app/base/modScreenCaps.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

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
    Names files;
    EXPECT_EQ(AppendNamedFiles(names, files).missing, 1);
    EXPECT_EQ(files, Names{plain_});
}

}  // namespace
}  // namespace tessary
