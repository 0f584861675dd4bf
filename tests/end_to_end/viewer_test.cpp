// The finished program on real files, seen from outside.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "app/base/paths.h"
#include "picture/show/picture_view.h"
#include "tests/end_to_end/running_viewer.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zip_image.h"

namespace tessary::test {
namespace {

constexpr wchar_t kCaption[] = L"てっさりビューア";

class ViewerTest : public testing::Test {
  protected:
    void Start(const std::wstring& arguments, const std::wstring& folder = FinishedFolder(),
               WORD showCommand = SW_SHOWDEFAULT) {
        viewer_.emplace(folder, arguments, store_.KeyPath(), showCommand);
    }
    // The same, up to its main window.
    void StartUp(const std::wstring& arguments, const std::wstring& folder = FinishedFolder(),
                 WORD showCommand = SW_SHOWDEFAULT) {
        Start(arguments, folder, showCommand);
        FindMain();
    }
    void FindMain() {
        main_ = viewer_->WindowOfCaption(kCaption);
        ASSERT_NE(main_, nullptr);
    }
    int Close() {
        PostMessageW(main_, WM_CLOSE, 0, 0);
        return viewer_->ExitCode();
    }
    // A plug-in folder is the only one.
    void UsePluginsIn(const std::wstring& folder) {
        SaveSetting(L"Init", L"Run", L"1");
        SaveSetting(L"General", L"UseSPI", L"1");
        SaveSetting(L"General", L"SPIFolder_1", folder);
        SaveSetting(L"General", L"LoadSPI_1", L"-1");
    }

    // The colour on the screen, so far below the middle of the window.
    COLORREF ColorAt(int below) const {
        RECT client{};
        GetClientRect(main_, &client);
        POINT point{client.right / 2, client.bottom / 2 + below};
        ClientToScreen(main_, &point);
        return GetPixel(UniqueScreenDc(GetDC(nullptr)).Get(), point.x, point.y);
    }
    std::wstring Status(int part) const { return viewer_->StatusText(main_, part); }
    // Waits for a text in the status bar.
    testing::AssertionResult Tells(int part, const std::wstring& text) const {
        if (WaitUntil([&] { return Status(part) == text; })) return testing::AssertionSuccess();
        return testing::AssertionFailure() << text << " is not " << Status(part);
    }

    RedirectedSettings store_;
    TemporaryFolder folder_;
    std::optional<RunningViewer> viewer_;
    HWND main_ = nullptr;
};

TEST_F(ViewerTest, ShowsABitmapInItsBoxNamesAPluginAndKeepsItsSettings) {
    SaveSetting(L"General", L"FixSizeValue", L"1");
    SaveSetting(L"SPI_CALLLOG", L"Function", L"GetPicture");
    SaveSetting(L"SPI_CALLLOG", L"SPI", L"iftessjpeg.spi");
    SaveSetting(L"SPI_CALLLOG", L"File", L"C:\\a.jpg");
    constexpr COLORREF kColor = RGB(200, 30, 60);
    StartUp(L'"' + folder_.Write(L"写真 사진.bmp", BitmapFileOf(2000, 200, kColor)) + L'"');
    EXPECT_TRUE(WaitUntil([&] { return ColorAt(0) == kColor; }));
    // 640 × 64 of 2000 × 200: well above the middle the window is empty again.
    EXPECT_NE(ColorAt(-80), kColor);
    EXPECT_TRUE(Tells(0, L"4個のプラグイン"));
    EXPECT_TRUE(Tells(1, L"[表示中] 写真 사진.bmp ( 2000×200 24bit )"));
    EXPECT_TRUE(Tells(2, L"前回は iftessjpeg.spi の処理中（GetPicture）に終了しました"));
    EXPECT_FALSE(PathExists(FinishedFolder() + L"~temp.bmp"));
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(GetSetting(L"General", L"UseSPI"), L"1");
    EXPECT_EQ(GetSetting(L"Init", L"Run"), L"1");
    EXPECT_EQ(GetSetting(L"Convert", L"FileMask"), L"*.*");
}

TEST_F(ViewerTest, DamagedFileIsToldAndTheProgramGoesOn) {
    const std::wstring empty = folder_.Write(L"空.jpg");
    Start(L'"' + empty + L'"');
    // The message box has the same caption as the window, and comes first.
    HWND box = nullptr;
    ASSERT_TRUE(WaitUntil([&] { return (box = FindWindowW(L"#32770", kCaption)) != nullptr; }));
    EXPECT_EQ(TextOf(GetDlgItem(box, 0xFFFF)),
              L"ファイル " + empty + L" を表示できません。\r\nファイルが空です。");
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(WaitUntil([&] { return !IsWindow(box); }));
    FindMain();
    EXPECT_EQ(Close(), 0);
}

TEST_F(ViewerTest, StandsAsAShortcutWantsAndLosesNoSettingToAPluginThatEndsIt) {
    std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), folder_.Path() + L"a.spi");
    folder_.Write(L"a.spi.script", "crash:terminate:DllUnload");
    UsePluginsIn(folder_.Path());
    StartUp(L"", FinishedFolder(), SW_SHOWMAXIMIZED);
    EXPECT_TRUE(WaitUntil([&] { return IsZoomed(main_) != FALSE; }));
    EXPECT_TRUE(Tells(0, L"1個のプラグイン"));
    EXPECT_NE(Close(), 0);
    EXPECT_EQ(GetSetting(L"Convert", L"FileMask"), L"*.*");
}

// A folder of all sorts, gone through with keys.
TEST_F(ViewerTest, StepsThroughPicturesArchivesAndWhatIsNeither) {
    folder_.Write(L"1 山.bmp", BitmapFileOf(10, 4, RGB(9, 9, 9)));
    folder_.Write(L"2.zip", ZipFileOf({{"sub/b.bmp", BitmapFileOf(22, 4, RGB(1, 1, 1))},
                                       {"sub/a.bmp", BitmapFileOf(21, 4, RGB(1, 1, 1))},
                                       {"..\\..\\note.txt", "no picture"}}));
    folder_.Write(L"3.txt", "neither");
    const std::wstring vanishing = folder_.Write(L"4.bmp", BitmapFileOf(40, 4, RGB(4, 4, 4)));
    folder_.Write(L"5.bmp", BitmapFileOf(50, 4, RGB(5, 5, 5)));
    StartUp(L'"' + RemoveBackslash(folder_.Path()) + L'"');
    const HWND bar = viewer_->WindowOfCaption(L"コントロールバー");
    ASSERT_NE(bar, nullptr);
    const HWND files = FindWindowExW(bar, nullptr, L"LISTBOX", nullptr);
    const HWND members = FindWindowExW(bar, files, L"LISTBOX", nullptr);
    const HWND info = FindWindowExW(bar, nullptr, L"EDIT", nullptr);
    const auto entry = [](HWND list, WPARAM index) {
        wchar_t text[1024] = {};
        SendMessageW(list, LB_GETTEXT, index, reinterpret_cast<LPARAM>(text));
        return std::wstring(text);
    };
    const auto shows = [&](const std::wstring& text) {
        return WaitUntil([&] { return TextOf(info) == text; });
    };
    const auto stepShows = [&](const std::wstring& text) {
        PostMessageW(FindWindowExW(main_, nullptr, L"TessaryPictureBox", nullptr), WM_KEYDOWN,
                     VK_RETURN, 0);
        return shows(text);
    };
    EXPECT_TRUE(shows(L"[画像] 1 山.bmp ( 10×4 24bit )"));
    EXPECT_EQ(SendMessageW(files, LB_GETCOUNT, 0, 0), 5);
    EXPECT_EQ(entry(files, 1), folder_.Path() + L"2.zip");
    EXPECT_EQ(entry(members, 0), L"Not Archive File.");
    std::filesystem::remove(vanishing);
    EXPECT_TRUE(stepShows(L"[圧縮] 2.zip - [未知] note.txt"));
    EXPECT_EQ(SendMessageW(members, LB_GETCOUNT, 0, 0), 3);
    EXPECT_TRUE(stepShows(L"[圧縮] 2.zip - [画像] a.bmp ( 21×4 24bit )"));
    EXPECT_EQ(Status(1), L"[表示中] 2.zip - a.bmp2.zip ( 21×4 24bit )");
    EXPECT_EQ(entry(members, 1), L"sub\\a.bmp");
    EXPECT_TRUE(stepShows(L"[圧縮] 2.zip - [画像] b.bmp ( 22×4 24bit )"));
    EXPECT_TRUE(stepShows(L"[画像] 5.bmp ( 50×4 24bit )")) << "over the text and the vanished file";
    EXPECT_EQ(SendMessageW(files, LB_GETCURSEL, 0, 0), 4);
    EXPECT_FALSE(IsWindowEnabled(members));
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(GetSetting(L"Window", L"ControlBarRollUP"), L"False");
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

// A version takes the first word that it knows: Windows 10 1607 all but PerMonitorV2, and up to
// 1511 the older element counts.
TEST(ManifestTest, ProgramsFollowEachScreenOnlyWhereMenusAndFramesDo) {
    for (const wchar_t* const program : {L"TessaryViewer.exe", L"tessary-convert.exe"}) {
        EXPECT_EQ(ManifestValue(program, "dpiAware"), "true");
        EXPECT_EQ(ManifestValue(program, "dpiAwareness"), "PerMonitorV2, System");
    }
}

TEST_F(ViewerTest, ALongStartIsToldAndCanBeStopped) {
    constexpr int kCount = 60;
    for (int i = 0; i < kCount; ++i) {
        const std::wstring name = std::to_wstring(100 + i) + L".spi";
        std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), folder_.Path() + name);
        folder_.Write(name + L".script", "dirty:slow:DllMain");
    }
    UsePluginsIn(folder_.Path());
    Start(L"");
    const HWND progress = viewer_->WindowOfCaption(L"SusiePluginをロードしています");
    ASSERT_NE(progress, nullptr);
    PostMessageW(progress, WM_COMMAND, IDCANCEL, 0);
    FindMain();
    EXPECT_TRUE(WaitUntil([&] { return !IsWindow(progress); }));
    const int loaded = std::stoi(L"0" + Status(0));
    EXPECT_LT(loaded, kCount);
    EXPECT_EQ(Status(2), L"プラグインの読み込みを中止しました（" + std::to_wstring(loaded) +
                             L" / " + std::to_wstring(kCount) + L"）");
    EXPECT_EQ(Close(), 0);
}

TEST_F(ViewerTest, MissingHelperLibraryIsNamed) {
    for (const std::wstring& file : FilesInFolder(FinishedFolder()))
        std::filesystem::copy_file(file, folder_.Path() + FileNameOf(file));
    // Not needed to start; told is one that is there and may not be loaded.
    const auto expectNotice = [&](const std::wstring& notice) {
        StartUp(L"", folder_.Path());
        EXPECT_EQ(Status(kNoticePanel - 1), notice);
        EXPECT_EQ(Close(), 0);
    };
    std::filesystem::remove(folder_.Path() + L"pic_kernel.dll");
    expectNotice(L"");
    folder_.Write(L"pic_kernel.dll", "no library");
    expectNotice(
        L"PIC_KERNEL.DLL を読み込めないため、画像の大きさを変えられません。"
        L"ファイルが壊れています (エラー 193)");
    const auto expectFailure = [&](const std::wstring& reason) {
        Start(L"", folder_.Path());
        const HWND box = viewer_->WindowOfCaption(L"致命的エラー");
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(TextOf(GetDlgItem(box, 0xFFFF)),
                  L"アプリケーションの初期化に失敗しました。\r\n" + reason);
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        viewer_->ExitCode();
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
}  // namespace tessary::test
