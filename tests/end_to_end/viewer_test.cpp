// The finished program on real files, seen from outside.
#include <windows.h>

#include <commctrl.h>  // needs windows.h before it
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "app/base/paths.h"
#include "picture/show/picture_view.h"
#include "tests/end_to_end/running_viewer.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using test::BitmapFileOf;
using test::FinishedFolder;
using test::RunningViewer;
using test::WaitUntil;

constexpr wchar_t kCaption[] = L"てっさりビューア";

class ViewerTest : public testing::Test {
  protected:
    // The picture's colour in the middle of the window, as it stands on the screen.
    static COLORREF MiddleOf(HWND window) {
        RECT client{};
        GetClientRect(window, &client);
        POINT middle{client.right / 2, client.bottom / 2};
        ClientToScreen(window, &middle);
        const UniqueScreenDc screen(GetDC(nullptr));
        return GetPixel(screen.Get(), middle.x, middle.y);
    }

    std::wstring StatusText(const RunningViewer& viewer, HWND main, int part) {
        const HWND bar = FindWindowExW(main, nullptr, STATUSCLASSNAMEW, nullptr);
        return bar == nullptr ? std::wstring() : viewer.StatusText(bar, part);
    }

    test::RedirectedSettings store_;
    test::TemporaryFolder folder_;
};

TEST_F(ViewerTest, ShowsABitmapAndKeepsItsSettings) {
    const std::wstring picture =
        folder_.Write(L"写真 사진.bmp", BitmapFileOf(101, 60, RGB(200, 30, 60)));
    const RunningViewer viewer(FinishedFolder(), L'"' + picture + L'"', store_.KeyPath());
    const HWND main = viewer.WindowOfCaption(kCaption);
    ASSERT_NE(main, nullptr);
    EXPECT_TRUE(WaitUntil([&] { return MiddleOf(main) == RGB(200, 30, 60); }));
    EXPECT_EQ(StatusText(viewer, main, 0), L"4個のプラグイン");
    EXPECT_TRUE(WaitUntil([&] {
        return StatusText(viewer, main, 1) == L"[表示中] 写真 사진.bmp ( 101×60 24bit )";
    })) << StatusText(viewer, main, 1);
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0);
    EXPECT_EQ(GetSetting(L"General", L"UseSPI"), L"1");
    EXPECT_EQ(GetSetting(L"Init", L"Run"), L"1");
    EXPECT_EQ(GetSetting(L"Convert", L"FileMask"), L"*.*");
}

TEST_F(ViewerTest, SizeModeFitsThePictureIntoItsBox) {
    SaveSetting(L"General", L"FixSizeValue", L"1");
    const std::wstring picture =
        folder_.Write(L"wide.bmp", BitmapFileOf(2000, 200, RGB(1, 200, 3)));
    const RunningViewer viewer(FinishedFolder(), L'"' + picture + L'"', store_.KeyPath());
    const HWND main = viewer.WindowOfCaption(kCaption);
    ASSERT_NE(main, nullptr);
    EXPECT_TRUE(WaitUntil([&] { return MiddleOf(main) == RGB(1, 200, 3); }));
    // 640 × 64 of 2000 × 200: well above the middle the window is empty again.
    RECT client{};
    GetClientRect(main, &client);
    POINT above{client.right / 2, client.bottom / 2 - 80};
    ClientToScreen(main, &above);
    EXPECT_NE(GetPixel(UniqueScreenDc(GetDC(nullptr)).Get(), above.x, above.y), RGB(1, 200, 3));
    EXPECT_FALSE(std::filesystem::exists(FinishedFolder() + L"~temp.bmp"));
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0);
}

TEST_F(ViewerTest, DamagedFileIsToldAndTheProgramGoesOn) {
    const std::wstring empty = folder_.Write(L"空.jpg");
    const RunningViewer viewer(FinishedFolder(), L'"' + empty + L'"', store_.KeyPath());
    // The message box has the same caption as the window, and comes first.
    HWND box = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (box = FindWindowW(L"#32770", kCaption)) != nullptr; }));
    EXPECT_EQ(RunningViewer::TextOf(GetDlgItem(box, 0xFFFF)),
              L"ファイル " + empty + L" を表示できません。\r\nファイルが空です。");
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindow(box); }));
    const HWND main = viewer.WindowOfCaption(kCaption);
    ASSERT_NE(main, nullptr);
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0);
}

TEST_F(ViewerTest, PluginThatEndedTheLastRunIsNamed) {
    SaveSetting(L"SPI_CALLLOG", L"Function", L"GetPicture");
    SaveSetting(L"SPI_CALLLOG", L"SPI", L"iftessjpeg.spi");
    SaveSetting(L"SPI_CALLLOG", L"File", L"C:\\a.jpg");
    const std::wstring picture = folder_.Write(L"a.bmp", BitmapFileOf(9, 9, RGB(1, 2, 3)));
    const RunningViewer viewer(FinishedFolder(), picture, store_.KeyPath());
    const HWND main = viewer.WindowOfCaption(kCaption);
    ASSERT_NE(main, nullptr);
    EXPECT_TRUE(WaitUntil([&] {
        return StatusText(viewer, main, 2) ==
               L"前回は iftessjpeg.spi の処理中（GetPicture）に終了しました";
    }));
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0);
}

TEST_F(ViewerTest, StandsAsAShortcutWantsAndLosesNoSettingToAPluginThatEndsIt) {
    std::filesystem::copy_file(test::TestPluginPath(L"iftst.spi"), folder_.Path() + L"a.spi");
    folder_.Write(L"a.spi.script", "crash:terminate:DllUnload");
    SaveSetting(L"Init", L"Run", L"1");
    SaveSetting(L"General", L"UseSPI", L"1");
    SaveSetting(L"General", L"SPIFolder_1", folder_.Path());
    SaveSetting(L"General", L"LoadSPI_1", L"-1");
    const RunningViewer viewer(FinishedFolder(), L"", store_.KeyPath(), SW_SHOWMAXIMIZED);
    const HWND main = viewer.WindowOfCaption(kCaption);
    ASSERT_NE(main, nullptr);
    EXPECT_TRUE(WaitUntil([&] { return IsZoomed(main) != FALSE; }));
    EXPECT_EQ(StatusText(viewer, main, 0), L"1個のプラグイン");
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_NE(viewer.ExitCode(), 0);
    EXPECT_EQ(GetSetting(L"Convert", L"FileMask"), L"*.*");
}

// The element's value in the manifest of a finished program.
std::string ManifestValue(const wchar_t* program, const std::string& element) {
    const UniqueModule file(
        LoadLibraryExW((FinishedFolder() + program).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    const HRSRC found = FindResourceW(file.Get(), CREATEPROCESS_MANIFEST_RESOURCE_ID, RT_MANIFEST);
    if (found == nullptr) return {};
    const std::string text(static_cast<const char*>(LockResource(LoadResource(file.Get(), found))),
                           SizeofResource(file.Get(), found));
    const size_t start = text.find('>', text.find('<' + element + ' ')) + 1;
    return text.substr(start, text.find("</", start) - start);
}

// Who reads which element, and which of its words a version knows, is the system's documentation's.
TEST_F(ViewerTest, FollowsEachScreenOnlyWhereMenusAndFramesDo) {
    const auto firstKnown = [](std::string list, const std::vector<std::string>& known) {
        std::erase(list, ' ');
        for (size_t at = 0; at <= list.size(); at = list.find(',', at) + 1) {
            const std::string word = list.substr(at, list.find(',', at) - at);
            if (std::ranges::count(known, word) > 0) return word;
            if (list.find(',', at) == std::string::npos) break;
        }
        return std::string("unaware");
    };
    for (const wchar_t* const program : {L"TessaryViewer.exe", L"tessary-convert.exe"}) {
        EXPECT_EQ(ManifestValue(program, "dpiAware"), "true") << "up to Windows 10 1511";
        const std::string list = ManifestValue(program, "dpiAwareness");
        EXPECT_EQ(firstKnown(list, {"System", "PerMonitor"}), "System") << "Windows 10 1607";
        EXPECT_EQ(firstKnown(list, {"System", "PerMonitor", "PerMonitorV2"}), "PerMonitorV2");
    }
}

TEST_F(ViewerTest, ALongStartIsToldAndCanBeStopped) {
    constexpr int kCount = 60;
    for (int i = 0; i < kCount; ++i) {
        const std::wstring name = std::to_wstring(100 + i) + L".spi";
        std::filesystem::copy_file(test::TestPluginPath(L"iftst.spi"), folder_.Path() + name);
        folder_.Write(name + L".script", "dirty:slow:DllMain");
    }
    SaveSetting(L"Init", L"Run", L"1");
    SaveSetting(L"General", L"UseSPI", L"1");
    SaveSetting(L"General", L"SPIFolder_1", folder_.Path());
    const RunningViewer viewer(FinishedFolder(), L"", store_.KeyPath());
    const HWND progress = viewer.WindowOfCaption(L"SusiePluginをロードしています");
    ASSERT_NE(progress, nullptr);
    PostMessageW(progress, WM_COMMAND, IDCANCEL, 0);
    const HWND main = viewer.WindowOfCaption(kCaption);
    ASSERT_NE(main, nullptr);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(progress); }));
    const int loaded = std::stoi(L"0" + StatusText(viewer, main, 0));
    EXPECT_LT(loaded, kCount);
    EXPECT_EQ(StatusText(viewer, main, 2), L"プラグインの読み込みを中止しました（" +
                                               std::to_wstring(loaded) + L" / " +
                                               std::to_wstring(kCount) + L"）");
    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0);
}

TEST_F(ViewerTest, MissingHelperLibraryIsNamed) {
    for (const std::wstring& file : FilesInFolder(FinishedFolder())) {
        std::filesystem::copy_file(file, folder_.Path() + FileNameOf(file));
    }
    // Not needed to start; told is one that is there and may not be loaded.
    const auto expectNotice = [&](const std::wstring& notice) {
        const RunningViewer viewer(folder_.Path(), L"", store_.KeyPath());
        const HWND main = viewer.WindowOfCaption(kCaption);
        ASSERT_NE(main, nullptr);
        const HWND status = FindWindowExW(main, nullptr, STATUSCLASSNAMEW, nullptr);
        EXPECT_EQ(viewer.StatusText(status, kNoticePanel - 1), notice);
        PostMessageW(main, WM_CLOSE, 0, 0);
        EXPECT_EQ(viewer.ExitCode(), 0);
    };
    std::filesystem::remove(folder_.Path() + L"pic_kernel.dll");
    expectNotice(L"");
    folder_.Write(L"pic_kernel.dll", "no library");
    expectNotice(
        L"PIC_KERNEL.DLL を読み込めないため、画像の大きさを変えられません。"
        L"ファイルが壊れています (エラー 193)");
    const auto expectFailure = [&](const std::wstring& reason) {
        const RunningViewer viewer(folder_.Path(), L"", store_.KeyPath());
        const HWND box = viewer.WindowOfCaption(L"致命的エラー");
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(RunningViewer::TextOf(GetDlgItem(box, 0xFFFF)),
                  L"アプリケーションの初期化に失敗しました。\r\n" + reason);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        viewer.ExitCode();
    };
    std::filesystem::remove(folder_.Path() + L"dcpng.dll");
    std::filesystem::remove(folder_.Path() + L"convertdib.dll");
    DeleteSettingSection(L"General");
    expectFailure(L"DCPNG.DLL が見つかりません。");
    // One that is there and may not be loaded is not missing.
    folder_.Write(L"dcpng.dll", "no library");
    expectFailure(L"DCPNG.DLL を読み込めません。ファイルが壊れています (エラー 193)。");
    EXPECT_EQ(GetSetting(L"General", L"UseSPI", L"none"), L"none");  // nothing was written back
}

}  // namespace
}  // namespace tessary
