// The finished program on real files, seen from outside.
#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
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

namespace tessary::test {
namespace {

constexpr wchar_t kCaption[] = L"てっさりビューア";

class ViewerTest : public testing::Test {
  protected:
    void Start(const std::wstring& arguments, const std::wstring& folder = FinishedFolder(),
               WORD showCommand = SW_SHOWDEFAULT) {
        viewer_.emplace(folder, arguments, store_.KeyPath(), showCommand);
    }
    // Waits for the main window.
    void FindMain() {
        main_ = viewer_->MainWindow();
        ASSERT_NE(main_, nullptr);
    }
    // What a message box of that caption says; closes it.
    std::wstring Message(const wchar_t* caption) {
        HWND box = nullptr;
        WaitUntil([&] { return (box = FindWindowW(L"#32770", caption)) != nullptr; });
        const std::wstring text = TextOf(GetDlgItem(box, 0xFFFF));
        PostMessageW(box, WM_COMMAND, IDOK, 0);
        WaitUntil([&] { return !IsWindow(box); });
        return text;
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
    SaveSetting(L"Window", L"ControlBarDock", L"0");
    SaveSetting(L"SPI_CALLLOG", L"Function", L"GetPicture");
    SaveSetting(L"SPI_CALLLOG", L"SPI", L"iftessjpeg.spi");
    SaveSetting(L"SPI_CALLLOG", L"File", L"C:\\a.jpg");
    constexpr COLORREF kColor = RGB(200, 30, 60);
    Start(L'"' + folder_.Write(L"写真 사진.bmp", BitmapFileOf(2000, 200, kColor)) + L'"');
    FindMain();
    EXPECT_TRUE(WaitUntil([&] { return ColorAt(0) == kColor; }));
    // 640 × 64 of 2000 × 200: well above the middle the window is empty again.
    EXPECT_NE(ColorAt(-80), kColor);
    const auto plugins =
        std::ranges::count_if(std::filesystem::directory_iterator(FinishedFolder()),
                              [](const auto& file) { return file.path().extension() == L".spi"; });
    EXPECT_TRUE(Tells(0, std::to_wstring(plugins) + L"個のプラグイン"));
    EXPECT_TRUE(Tells(1, L"[表示中] 写真 사진.bmp ( 2000×200 24bit )"));
    EXPECT_TRUE(Tells(kScalePanel - 1, L"32 %"));
    EXPECT_TRUE(
        Tells(kNoticePanel - 1, L"前回は iftessjpeg.spi の処理中（GetPicture）に終了しました"));
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(GetSetting(L"General", L"UseSPI"), L"1");
    EXPECT_EQ(GetSetting(L"Init", L"Run"), L"1");
    EXPECT_EQ(GetSetting(L"Convert", L"FileMask"), L"*.*");
}

TEST_F(ViewerTest, DamagedFileIsToldAndTheProgramGoesOn) {
    const std::wstring empty = folder_.Write(L"空.jpg");
    Start(L'"' + empty + L'"');
    EXPECT_EQ(Message(kCaption),
              L"ファイル " + empty + L" を表示できません。\r\nファイルが空です。");
    FindMain();
    EXPECT_EQ(Close(), 0);
}

TEST_F(ViewerTest, StandsAsAShortcutWantsAndNoticesNothingOfAPluginThatEndsItsProcess) {
    std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), folder_.Path() + L"a.spi");
    folder_.Write(L"a.spi.script", "crash:terminate:DllUnload");
    UsePluginsIn(folder_.Path());
    Start(L"", FinishedFolder(), SW_SHOWMAXIMIZED);
    FindMain();
    EXPECT_TRUE(WaitUntil([&] { return IsZoomed(main_) != FALSE; }));
    const HWND bar = FindWindowExW(main_, nullptr, L"TessaryControlBar", nullptr);
    EXPECT_TRUE(bar != nullptr && IsWindowVisible(bar));  // a first start has it in the window
    EXPECT_TRUE(Tells(0, L"1個のプラグイン"));
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(GetSetting(L"Convert", L"FileMask"), L"*.*");
}

TEST_F(ViewerTest, PluginsAreAskedBehindTheWindowAndOnlyOnce) {
    std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), folder_.Path() + L"a.spi");
    folder_.Write(L"a.spi.script", "dirty:question:DllMain");
    UsePluginsIn(folder_.Path());
    Start(L"");
    FindMain();
    EXPECT_EQ(Status(0), L"0個のプラグイン") << "it hangs";
    const DWORD before = GetTickCount();
    EXPECT_EQ(Close(), 0);
    EXPECT_LT(GetTickCount() - before, 8000U) << "nobody waits for it";

    const std::wstring picture = folder_.Write(L"a.tst", "TST 30x20x24\n");
    const auto runWith = [&](const char* script, const wchar_t* shown) {
        folder_.Write(L"a.spi.script", script);
        Start(*shown == L'\0' ? L"" : L'"' + picture + L'"');
        FindMain();
        EXPECT_TRUE(Tells(0, L"1個のプラグイン")) << script;
        EXPECT_TRUE(Tells(1, shown)) << script;
        EXPECT_EQ(Status(kNoticePanel - 1), L"") << script;
        EXPECT_EQ(Close(), 0);
    };
    runWith("", L"");
    runWith("crash:terminate:DllMain", L"");
    const wchar_t* const shown = L"[表示中] a.tst ( 30×20 24bit )";
    runWith("", shown);

    // One that hangs keeps nobody from what others can read.
    std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), folder_.Path() + L"b.spi");
    folder_.Write(L"b.spi.script", "dirty:question:DllMain");
    Start(L'"' + picture + L'"');
    FindMain();
    EXPECT_TRUE(Tells(1, shown));
    EXPECT_EQ(Status(0), L"1個のプラグイン");
    EXPECT_NE(viewer_->WindowOfCaption(L"SusiePluginをロードしています"), nullptr);
    EXPECT_EQ(Close(), 0);
}

// A folder of all sorts, gone through with keys.
TEST_F(ViewerTest, StepsThroughPicturesArchivesAndWhatIsNeither) {
    folder_.Write(L"1 山.bmp", BitmapFileOf(10, 4, RGB(9, 9, 9)));
    std::filesystem::copy_file(TestProgramFolder() + LR"(seeds\fuzz_archive\zip-pictures)",
                               folder_.Path() + L"2.zip");
    folder_.Write(L"3.txt", "neither");
    folder_.Write(L"Thumbs.db", "neither");
    folder_.Write(L"10.bmp", BitmapFileOf(50, 4, RGB(5, 5, 5)));
    SaveSetting(L"Window", L"ControlBarDock", L"0");
    // Opened alone, it brings its neighbours along; steps wait for them.
    Start(L'"' + folder_.Path() + L"1 山.bmp\"");
    FindMain();
    const HWND bar = viewer_->WindowOfCaption(L"コントロールバー");
    ASSERT_NE(bar, nullptr);
    const HWND files = FindWindowExW(bar, nullptr, WC_LISTVIEWW, nullptr);
    const HWND members = FindWindowExW(bar, files, WC_LISTVIEWW, nullptr);
    const HWND info = FindWindowExW(bar, nullptr, L"EDIT", nullptr);
    // How many entries the second list has meanwhile; one tells that there is no archive.
    constexpr WPARAM kBack = VK_BACK;
    constexpr WPARAM kOn = VK_RETURN;
    for (const auto& [text, count, key] :
         {std::tuple{L"[画像] 1 山.bmp ( 10×4 24bit )", 1, kOn},
          {L"[圧縮] 2.zip - [画像] a.bmp ( 21×4 24bit )", 2, kOn},
          {L"[圧縮] 2.zip - [画像] b.bmp ( 22×4 24bit )", 2, kOn},
          {L"[画像] 10.bmp ( 50×4 24bit )", 1, kBack},
          {L"[圧縮] 2.zip - [画像] b.bmp ( 22×4 24bit )", 2, kBack},
          {L"[圧縮] 2.zip - [画像] a.bmp ( 21×4 24bit )", 2, kBack}}) {
        EXPECT_TRUE(WaitUntil([&] {
            return TextOf(info) == text && SendMessageW(members, LVM_GETITEMCOUNT, 0, 0) == count &&
                   IsWindowEnabled(members) == (count > 1);
        })) << TextOf(info)
            << L" for " << text << L": " << SendMessageW(members, LVM_GETITEMCOUNT, 0, 0)
            << IsWindowEnabled(members);
        PostMessageW(FindWindowExW(main_, nullptr, L"TessaryPictureBox", nullptr), WM_KEYDOWN, key,
                     0);
    }
    EXPECT_EQ(SendMessageW(files, LVM_GETITEMCOUNT, 0, 0), 3);
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(GetSetting(L"Window", L"ControlBarRollUP"), L"False");
}

// A version takes the first word that it knows: Windows 10 1607 all but PerMonitorV2, and up to
// 1511 the older element counts.
TEST(ManifestTest, ProgramsFollowEachScreenOnlyWhereMenusAndFramesDo) {
    for (const wchar_t* const program : {L"TessaryViewer.exe", L"tessary-convert.exe"}) {
        const UniqueModule file(LoadLibraryExW((FinishedFolder() + program).c_str(), nullptr,
                                               LOAD_LIBRARY_AS_DATAFILE));
        const HRSRC found =
            FindResourceW(file.Get(), CREATEPROCESS_MANIFEST_RESOURCE_ID, RT_MANIFEST);
        ASSERT_NE(found, nullptr);
        const std::string_view text(
            static_cast<const char*>(LockResource(LoadResource(file.Get(), found))),
            SizeofResource(file.Get(), found));
        EXPECT_NE(text.find(">true</dpiAware>"), text.npos);
        EXPECT_NE(text.find(">PerMonitorV2, System</dpiAwareness>"), text.npos);
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
    EXPECT_EQ(Status(kNoticePanel - 1), L"プラグインの読み込みを中止しました（" +
                                            std::to_wstring(loaded) + L" / " +
                                            std::to_wstring(kCount) + L"）");
    EXPECT_EQ(Close(), 0);
}

// Not needed to start is one alone; told is of each that it is there and may not be loaded.
TEST_F(ViewerTest, MissingHelperLibraryIsNamed) {
    for (const std::wstring& file : FilesInFolder(FinishedFolder()))
        std::filesystem::copy_file(file, folder_.Path() + FileNameOf(file));
    const auto spoil = [&](const wchar_t* library, bool isThere) {
        std::filesystem::remove(folder_.Path() + library);
        if (isThere) folder_.Write(library, "no library");
        Start(L"", folder_.Path());
    };
    for (const bool isThere : {false, true}) {
        spoil(L"pic_kernel.dll", isThere);
        FindMain();
        EXPECT_EQ(Status(kNoticePanel - 1),
                  isThere ? L"PIC_KERNEL.DLL を読み込めないため、画像の大きさを変えられません。"
                            L"ファイルが壊れています (エラー 193)"
                          : L"");
        EXPECT_EQ(Close(), 0);
    }
    std::filesystem::remove(folder_.Path() + L"convertdib.dll");
    DeleteSettingSection(L"General");
    for (const bool isThere : {false, true}) {
        spoil(L"dcpng.dll", isThere);
        EXPECT_EQ(Message(L"致命的エラー"),
                  std::wstring(L"アプリケーションの初期化に失敗しました。\r\nDCPNG.DLL ") +
                      (isThere ? L"を読み込めません。ファイルが壊れています (エラー 193)。"
                               : L"が見つかりません。"));
        viewer_->ExitCode();
    }
    EXPECT_EQ(GetSetting(L"General", L"UseSPI", L"none"), L"none");  // nothing was written back
}

}  // namespace
}  // namespace tessary::test
