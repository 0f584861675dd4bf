// What the calling entries do with their arguments, and what they keep plug-ins from destroying.
#include <gtest/gtest.h>

#include <cstring>

#include "app/base/text.h"
#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {
namespace {

using susiectl::kNotExported;

TEST(CallsTest, FunctionsThatAreNotThereAreAnsweredMinusOne) {
    const auto& susiectl = Susiectl();
    char block[512];
    EXPECT_EQ(susiectl.getPluginInfo(nullptr, 0, block, 256), kNotExported);
    EXPECT_EQ(susiectl.isSupported(nullptr, "a", nullptr), kNotExported);
    EXPECT_EQ(susiectl.getPictureInfo(nullptr, "a", 0, 0, nullptr), kNotExported);
    EXPECT_EQ(susiectl.getPicture(nullptr, "a", 0, 0, nullptr, nullptr, nullptr, 0), kNotExported);
    EXPECT_EQ(susiectl.getPreview(nullptr, "a", 0, 0, nullptr, nullptr, nullptr, 0), kNotExported);
    EXPECT_EQ(susiectl.getArchiveInfo(nullptr, "a", 0, 0, nullptr), kNotExported);
    EXPECT_EQ(susiectl.getFileInfo(nullptr, "a", 0, "b", 0, nullptr), kNotExported);
    EXPECT_EQ(susiectl.getFile(nullptr, "a", 0, block, 0, nullptr, 0), kNotExported);
    EXPECT_EQ(susiectl.configurationDlg(nullptr, nullptr, 1), kNotExported);
}

TEST(CallsTest, PluginsSeeTheBeginningOfAFile) {
    const TemporaryFolder folder;
    const LoadedPlugin plugin(L"iftst.spi");
    const auto supports = [&](const std::wstring& path) {
        return Susiectl().isSupported(plugin["IsSupported"], ToAnsi(path).c_str(), nullptr);
    };
    EXPECT_EQ(supports(folder.Write(L"short.tst", "TST 1x1x24\nread-beyond:4096\n")), 1);
    EXPECT_EQ(supports(folder.Write(L"long.tst", "TST 1x1x24\n\n" + std::string(9999, 'x'))), 1);
    EXPECT_EQ(supports(folder.Write(L"two.tst", "TST 1x1x24\nanswer:IsSupported:2\n")), 2);
    EXPECT_EQ(supports(folder.Write(L"empty.tst")), 0);
    EXPECT_EQ(supports(folder.Write(L"exclusive.tst", "TST 1x1x24\nexclusive\n")), 1);
    EXPECT_EQ(TestCallCount(plugin.Module(), "IsSupported"), 5);
    EXPECT_EQ(supports(folder.Path() + L"missing.tst"), 0);
    EXPECT_EQ(Susiectl().isSupported(plugin["IsSupported"], nullptr, nullptr), 0);
    EXPECT_EQ(TestCallCount(plugin.Module(), "IsSupported"), 5) << "there was nothing to ask";
}

TEST(CallsTest, TextsStayInsideTheirBuffer) {
    constexpr int kSize = 32;
    const TemporaryFolder folder;
    for (const std::string script : {"info-overrun:4000", "info-fill", "info-longer:1000"}) {
        const LoadedPlugin plugin(folder, script);
        char buffer[kSize + 64];
        std::memset(buffer, '?', sizeof buffer);
        EXPECT_GT(Susiectl().getPluginInfo(plugin["GetPluginInfo"], 2, buffer, kSize), 0);
        EXPECT_TRUE(std::string_view(buffer).starts_with("*.")) << script;
        EXPECT_EQ(std::string(buffer + kSize, 64), std::string(64, '?')) << script;
    }
    const LoadedPlugin silent(L"info_none.spi");
    char untouched[] = "untouched";
    EXPECT_EQ(Susiectl().getPluginInfo(silent["GetPluginInfo"], 2, untouched, sizeof untouched), 0);
    EXPECT_STREQ(untouched, "untouched");
}

// What else comes through is seen where the program's own plug-in objects make these calls.
TEST(CallsTest, MembersAreFoundByTheirName) {
    const LoadedPlugin plugin(L"axtsa.spi");
    const std::string archive = ArchiveOf({{"dir/one.txt", "first"}, {"two.txt", "2nd"}});
    susie::FileInfo record{};
    EXPECT_EQ(Susiectl().getFileInfo(plugin["GetFileInfo"], archive.data(),
                                     static_cast<LONG_PTR>(archive.size()), "two.txt",
                                     susie::kSourceMemory, &record),
              susie::kSuccess);
    EXPECT_STREQ(record.fileName, "two.txt");
    EXPECT_EQ(record.fileSize, 3U);
}

TEST(CallsTest, ContentTellsTheFormat) {
    const TemporaryFolder folder;
    using namespace susiectl;
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
            EXPECT_EQ(Susiectl().getFileInformationW(folder.Write(L"file", content).c_str()), kind)
                << content;
    EXPECT_EQ(Susiectl().getFileInformationW((folder.Path() + L"none").c_str()), kContentUnknown);
    EXPECT_EQ(Susiectl().getFileInformation(nullptr), kContentUnknown);
}

}  // namespace
}  // namespace tessary::test
