// What the calling entries do with their arguments, and what they keep plug-ins from destroying.
#include <gtest/gtest.h>

#include "app/base/text.h"
#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/support/loaded_library.h"

namespace tessary::test {
namespace {

using namespace susiectl;

TEST(CallsTest, PluginsSeeTheBeginningOfAFile) {
    const TemporaryFolder folder;
    const LoadedPlugin plugin(L"iftst.spi");
    const std::pair<std::string, int> files[] = {{"TST 1x1x24\nread-beyond:4096\n", 1},
                                                 {"TST 1x1x24\n\n" + std::string(9999, 'x'), 1},
                                                 {"TST 1x1x24\nanswer:IsSupported:2\n", 2},
                                                 {"", 0},
                                                 {"TST 1x1x24\nexclusive\n", 1}};
    for (const auto& [content, answer] : files) {
        const std::string file = ToAnsi(folder.Write(L"a.tst", content));
        EXPECT_EQ(Susiectl().isSupported(plugin["IsSupported"], file.c_str(), nullptr), answer);
    }
    for (const char* nothing : {static_cast<const char*>(nullptr), "C:\\missing.tst"})
        EXPECT_EQ(Susiectl().isSupported(plugin["IsSupported"], nothing, nullptr), 0);
    EXPECT_EQ(plugin.Calls("IsSupported"), 5) << "of nothing it was not asked";
}

TEST(CallsTest, TextsStayInsideTheirBuffer) {
    constexpr int kSize = 32;
    const std::string_view untouched = "????????";
    for (const std::string script :
         {"info-overrun:4000", "info-fill", "info-longer:1000", "info-none"}) {
        const LoadedPlugin plugin(L"iftst.spi", script);
        std::string buffer(kSize + 64, '?');
        const int answer =
            Susiectl().getPluginInfo(plugin["GetPluginInfo"], 2, buffer.data(), kSize);
        EXPECT_EQ(answer > 0, script != "info-none") << script;
        EXPECT_TRUE(buffer.starts_with(answer > 0 ? "*." : untouched)) << script;
        EXPECT_EQ(buffer.substr(kSize), std::string(64, '?')) << script;
    }
}

TEST(CallsTest, ContentTellsTheFormat) {
    const TemporaryFolder folder;
    using namespace std::string_view_literals;
    const std::pair<int, std::vector<std::string_view>> kinds[] = {
        {kContentBmp,
         {"BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"sv, "BM\0\0\0\0\0\0\0\0\x1A\0\0\0\x0C\0\0\0"sv}},
        {kContentPng, {"\x89PNG\r\n\x1A\n\0\0\0\x0D"sv}},
        {kContentJpeg, {"\xFF\xD8\xFF\xE1"}},
        {kContentGif, {"GIF87a", "GIF89a\x01"}},
        {kContentLzh, {"\x20\x7A-lh5-\x10", "\x20\x7A-pm2-", "\x20\x7A-lzs-"}},
        {kContentZip, {"PK\3\4", "PK\5\6\0\0"sv}},
        {kContentUnknown,
         {"BMW is no bitmap, and this is a text", "BM", "\x89PNG\n\x1A\n", "GIF88a",
          "\x20\x7A-xx5-", "PK\1\2", ""}}};
    for (const auto& [kind, contents] : kinds)
        for (const std::string_view content : contents)
            EXPECT_EQ(Susiectl().getFileInformation(folder.Write(L"file", content).c_str()), kind)
                << content;
    EXPECT_EQ(Susiectl().getFileInformation((folder.Path() + L"none").c_str()), kContentUnknown);
    const LoadedLibrary library(L"susiectl.dll");
    const GetFileInformationFunction ofAnsi = library[kGetFileInformation];
    EXPECT_EQ(ofAnsi(ToAnsi(folder.Write(L"file", "GIF87a")).c_str()), kContentGif);
    EXPECT_EQ(ofAnsi(nullptr), kContentUnknown);
}

}  // namespace
}  // namespace tessary::test
