// What the calling entries do with their arguments, and what they keep plug-ins from destroying.
#include <gtest/gtest.h>

#include <cstring>

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

TEST(CallsTest, PicturesComeThroughAsThePluginMadeThem) {
    const LoadedPlugin plugin(L"iftst.spi");
    const std::string picture = "TST 5x3x24\ntop-down\ntext:about\n";
    const auto size = static_cast<LONG_PTR>(picture.size());
    susie::PictureInfo record{};
    ASSERT_EQ(Susiectl().getPictureInfo(plugin["GetPictureInfo"], picture.data(), size, 1, &record),
              susie::kSuccess);
    EXPECT_EQ(record.width, 5);
    EXPECT_EQ(record.colorDepth, 24);
    EXPECT_STREQ(static_cast<const char*>(LocalLock(record.hInfo)), "about");
    LocalFree(record.hInfo);

    HLOCAL info = nullptr;
    HLOCAL bits = nullptr;
    ASSERT_EQ(Susiectl().getPicture(plugin["GetPicture"], picture.data(), size, 1, &info, &bits,
                                    nullptr, 0),
              susie::kSuccess);
    EXPECT_EQ(static_cast<const BITMAPINFOHEADER*>(LocalLock(info))->biHeight, -3);
    const auto* row = static_cast<const char*>(LocalLock(bits)) + 16;
    Colour pixel{};
    std::memcpy(&pixel, row + 4 * 3, sizeof pixel);
    EXPECT_EQ(pixel, PatternPixel(4, 1));
    LocalFree(info);
    LocalFree(bits);
}

struct Progress {
    int calls = 0;
    int stopAt = 0;
    DWORD thread = 0;
};

int __stdcall CountProgress(int, int, LONG_PTR userData) {
    auto& progress = *reinterpret_cast<Progress*>(userData);
    return ++progress.calls == progress.stopAt;
}

TEST(CallsTest, TheCallbackHearsAndStops) {
    const LoadedPlugin plugin(L"iftst.spi");
    Progress progress;
    const auto decode = [&](const char* picture) {
        progress.calls = 0;
        return plugin.Decode(picture, CountProgress, reinterpret_cast<LONG_PTR>(&progress));
    };
    EXPECT_EQ(decode("TST 4x9x8\n"), susie::kSuccess);
    EXPECT_EQ(progress.calls, 10);
    progress.stopAt = 3;
    EXPECT_EQ(decode("TST 4x9x8\n"), susie::kAborted);
    EXPECT_EQ(progress.calls, 3);
    EXPECT_EQ(decode("TST 4x9x8\nignore-abort\n"), susie::kSuccess);
    EXPECT_EQ(plugin.Decode("TST 4x9x8\n", nullptr), susie::kSuccess);
}

TEST(CallsTest, ArchivesAreListedAndUnpacked) {
    const TemporaryFolder folder;
    const LoadedPlugin plugin(L"axtsa.spi");
    const std::string archive = "TSA\nmember\t5\tdir/\tone.txt\nmember\t3\t\ttwo.txt\n\nfirst2nd";
    const auto size = static_cast<LONG_PTR>(archive.size());
    HLOCAL list = nullptr;
    ASSERT_EQ(Susiectl().getArchiveInfo(plugin["GetArchiveInfo"], archive.data(), size, 1, &list),
              susie::kSuccess);
    EXPECT_EQ(LocalSize(list), 3 * sizeof(susie::FileInfo));
    const auto* members = static_cast<const susie::FileInfo*>(LocalLock(list));
    EXPECT_STREQ(members[0].path, "dir/");
    EXPECT_STREQ(members[1].fileName, "two.txt");

    HLOCAL block = nullptr;
    ASSERT_EQ(Susiectl().getFile(plugin["GetFile"], archive.data(),
                                 static_cast<LONG_PTR>(members[1].position),
                                 reinterpret_cast<char*>(&block),
                                 susie::kSourceMemory | susie::kDestinationMemory, nullptr, 0),
              susie::kSuccess);
    EXPECT_EQ(std::string(static_cast<const char*>(LocalLock(block)), LocalSize(block)), "2nd");
    LocalFree(block);
    LocalFree(list);

    susie::FileInfo record{};
    EXPECT_EQ(
        Susiectl().getFileInfo(plugin["GetFileInfo"], archive.data(), size, "one.txt", 1, &record),
        susie::kSuccess);
    EXPECT_EQ(record.fileSize, 5U);
    const std::string path = ToAnsi(folder.Write(L"a.tsa", archive));
    const std::string target = ToAnsi(folder.Path());
    ASSERT_EQ(
        Susiectl().getFile(plugin["GetFile"], path.c_str(), static_cast<LONG_PTR>(record.position),
                           const_cast<char*>(target.c_str()), 0, nullptr, 0),
        susie::kSuccess);
    EXPECT_EQ(std::filesystem::file_size(folder.Path() + L"one.txt"), 5U);
}

TEST(CallsTest, ContentTellsTheFormat) {
    const TemporaryFolder folder;
    const auto kind = [&](std::string_view content) {
        return Susiectl().getFileInformationW(folder.Write(L"file", content).c_str());
    };
    using namespace susiectl;
    using namespace std::string_view_literals;
    EXPECT_EQ(kind("BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"sv), kContentBmp);
    EXPECT_EQ(kind("BM\0\0\0\0\0\0\0\0\x1A\0\0\0\x0C\0\0\0"sv), kContentBmp);
    EXPECT_EQ(kind("BMW is no bitmap, and this is a text"sv), kContentUnknown);
    EXPECT_EQ(kind("BM"sv), kContentUnknown);
    EXPECT_EQ(kind("\x89PNG\r\n\x1A\n\0\0\0\x0D"sv), kContentPng);
    EXPECT_EQ(kind("\x89PNG\n\x1A\n"sv), kContentUnknown);
    EXPECT_EQ(kind("\xFF\xD8\xFF\xE1"sv), kContentJpeg);
    EXPECT_EQ(kind("GIF87a"sv), kContentGif);
    EXPECT_EQ(kind("GIF89a\x01"sv), kContentGif);
    EXPECT_EQ(kind("GIF88a"sv), kContentUnknown);
    EXPECT_EQ(kind("\x20\x7A-lh5-\x10"sv), kContentLzh);
    EXPECT_EQ(kind("\x20\x7A-pm2-"sv), kContentLzh);
    EXPECT_EQ(kind("\x20\x7A-lzs-"sv), kContentLzh);
    EXPECT_EQ(kind("\x20\x7A-xx5-"sv), kContentUnknown);
    EXPECT_EQ(kind("PK\3\4"sv), kContentZip);
    EXPECT_EQ(kind("PK\5\6\0\0"sv), kContentZip);
    EXPECT_EQ(kind("PK\1\2"sv), kContentUnknown);
    EXPECT_EQ(kind(""sv), kContentUnknown);
    EXPECT_EQ(Susiectl().getFileInformationW((folder.Path() + L"none").c_str()), kContentUnknown);
    EXPECT_EQ(Susiectl().getFileInformation(nullptr), kContentUnknown);
}

}  // namespace
}  // namespace tessary::test
