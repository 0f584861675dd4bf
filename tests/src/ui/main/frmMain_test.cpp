// The main window's life: what it opens, what it tells, how it closes.
#include <windows.h>

#include <commctrl.h>

#include <climits>

#include "app/settings/settings_store.h"
#include "plugin/call_log.h"
#include "tests/src/ui/main/dropped_files.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/temporary_folder.h"
#include "ui/form/session_hold.h"

namespace tessary {
namespace {

using List = std::vector<std::wstring>;
using test::Drop;
using StatusBarTest = test::MainWindowTest;
using CloseTest = test::MainWindowTest;

class OpenFilesTest : public test::MainWindowTest {
  protected:
    test::TemporaryFolder folder_;
};

TEST_F(OpenFilesTest, CommandLineIsHandedOverAfterLoading) {
    folder_.Write(L"絵\\b.bmp");
    folder_.Write(L"絵\\sub\\c.bmp");
    const std::wstring file = folder_.Write(L"a 1.bmp");
    frmMain window(
        {.commandLine = {file, folder_.Path() + L"絵"}, .pluginCount = {}, .endProgram = {}});
    window.SetControlBar(controlBar_);
    ASSERT_TRUE(window.Load());
    EXPECT_TRUE(controlBar_.lists.empty());  // the window comes first
    DoEvents();
    EXPECT_EQ(controlBar_.lists, (std::vector<List>{{file, folder_.Path() + L"絵\\b.bmp"}}));
    window.Unload();

    for (const auto& [some, notice] :
         {std::pair{std::wstring(), L"開けるファイルが見つかりませんでした。"},
          {file, L"2 個のファイルが見つかりませんでした。"}}) {
        controlBar_.lists.clear();
        std::vector<std::wstring> names{folder_.Path() + L"none.bmp", folder_.Path() + L"no.bmp"};
        if (!some.empty()) names.push_back(some);
        frmMain lost({.commandLine = names, .pluginCount = {}, .endProgram = {}});
        lost.SetControlBar(controlBar_);
        ASSERT_TRUE(lost.Load());
        DoEvents();
        EXPECT_EQ(controlBar_.lists.size(), some.empty() ? 0U : 1U);
        EXPECT_EQ(lost.statusInformation().PanelText(kNoticePanel), notice);
        lost.OpenLater({file});
        DoEvents();
        EXPECT_EQ(lost.statusInformation().PanelText(kNoticePanel), L"");
        lost.Unload();
    }
}

TEST_F(OpenFilesTest, TakesDroppedFilesAndFolders) {
    window_.SetControlBar(controlBar_);
    Load();
    const std::wstring first = folder_.Write(L"1.bmp");
    const std::wstring second = folder_.Write(L"사진.bmp");
    folder_.Write(L"中\\3.bmp");
    EXPECT_EQ(Drop(window_.Handle(), {second, first}), DROPEFFECT_COPY);
    EXPECT_TRUE(controlBar_.lists.empty());  // the source must not wait for the decoding
    DoEvents();
    window_.Form::Show();
    SetForegroundWindow(GetDesktopWindow());  // the source is another program
    EXPECT_EQ(Drop(window_.pictureView().Handle(), {folder_.Path() + L"中"},
                   DROPEFFECT_COPY | DROPEFFECT_MOVE),
              DROPEFFECT_COPY);
    EXPECT_EQ(GetForegroundWindow(), window_.Handle());  // the next keys are meant for us
    DoEvents();
    EXPECT_EQ(controlBar_.lists,
              (std::vector<List>{{second, first}, {folder_.Path() + L"中\\3.bmp"}}));
    // A box tells of one file opened by hand, and never of one among others.
    controlBar_.failure = L"broken";
    window_.OpenLater({first, second});
    DoEvents();
    EXPECT_TRUE(messages_.All().empty());
    window_.OpenLater({first});
    DoEvents();
    EXPECT_EQ(messages_.Only(), L"broken");
}

TEST_F(OpenFilesTest, RefusesDropsThatItCannotServe) {
    window_.SetControlBar(controlBar_);
    Load();
    const std::wstring file = folder_.Write(L"1.bmp");
    EXPECT_EQ(Drop(window_.Handle(), {file}, DROPEFFECT_MOVE), DROPEFFECT_NONE);
    Values().readsUnderWay = 1;
    EXPECT_EQ(Drop(window_.Handle(), {file}), DROPEFFECT_NONE);
    Values().readsUnderWay = 0;
    EnableWindow(window_.Handle(), FALSE);  // behind a dialog
    EXPECT_EQ(Drop(window_.Handle(), {file}), DROPEFFECT_NONE);
    EnableWindow(window_.Handle(), TRUE);
    {
        const frmMain::Reading reading(window_, L"reading");
        EXPECT_EQ(Drop(window_.Handle(), {file}), DROPEFFECT_COPY);
        DoEvents();
        EXPECT_TRUE(controlBar_.lists.empty());
    }
    DoEvents();
    EXPECT_EQ(controlBar_.lists.size(), 1u);  // not before the end of the load
}

TEST_F(StatusBarTest, ShowsTextsAsTheyAreInPanelsThatFit) {
    Load();
    const StatusBar& bar = window_.statusInformation();
    const auto firstEdge = [&] {
        int edges[2]{};
        SendMessageW(bar.Handle(), SB_GETPARTS, 2, reinterpret_cast<LPARAM>(edges));
        EXPECT_EQ(edges[1], -1);
        return edges[0];
    };
    EXPECT_EQ(bar.PanelText(kPluginCountPanel), L"3個のプラグイン");
    const int narrow = firstEdge();
    pluginCount_ = 120;
    window_.ShowPluginCount();
    EXPECT_EQ(bar.PanelText(kPluginCountPanel), L"120個のプラグイン");
    const int wide = firstEdge();
    EXPECT_GT(wide, narrow);
    window_.SetPanelText(kPluginCountPanel, L"");  // the next panel stays where it is
    EXPECT_EQ(firstEdge(), wide);
    window_.SetPanelText(kPluginCountPanel, std::wstring(500, L'長'));
    EXPECT_EQ(firstEdge(), View().cx / 2);
    window_.SetPanelText(kShownFilePanel, L"[表示中] a\tb & c.bmp ( 1×1 24bit )");
    EXPECT_EQ(bar.PanelText(kShownFilePanel), L"[表示中] a b & c.bmp ( 1×1 24bit )");

    // A notice fits at the first width, and the file's name gives way to it.
    Load(632);
    window_.SetPanelText(kPluginCountPanel, L"4個のプラグイン");
    window_.SetPanelText(kShownFilePanel, L"[表示中] a long name of a picture.bmp ( 1×1 24bit )");
    const auto room = [&](int panel) {
        RECT place{};
        SendMessageW(bar.Handle(), SB_GETRECT, static_cast<WPARAM>(panel - 1),
                     reinterpret_cast<LPARAM>(&place));
        return place.right - place.left;
    };
    const auto needed = [&](const std::wstring& text) {
        const HDC context = GetDC(bar.Handle());
        SelectObject(context,
                     reinterpret_cast<HFONT>(SendMessageW(bar.Handle(), WM_GETFONT, 0, 0)));
        SIZE size{};
        GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
        ReleaseDC(bar.Handle(), context);
        return size.cx;
    };
    const std::wstring notice = L"前回は iftessjpeg.spi の処理中（GetPicture）に終了しました";
    window_.SetPanelText(kNoticePanel, notice);
    EXPECT_GE(room(kNoticePanel), needed(notice));
    EXPECT_GE(room(kPluginCountPanel), needed(L"4個のプラグイン"));
    window_.SetPanelText(kNoticePanel, std::wstring(300, L'長'));
    EXPECT_EQ(room(kShownFilePanel) / 8, View().cx / 4 / 8);
}

TEST_F(CloseTest, IsRefusedWhileAPictureLoads) {
    Load();
    const HWND window = window_.Handle();
    Values().readsUnderWay = 1;
    EXPECT_TRUE(window_.Breathe());
    Choose(menuFileExit);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(Values().quitRequested);
    EXPECT_FALSE(window_.Breathe());  // the load is asked to stop
    Values().readsUnderWay = 0;
    Choose(menuFileExit);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(ended_, 1);
}

using ReadingTest = test::MainWindowTest;

TEST_F(ReadingTest, IsToldWhenItTakesLongAndStopsAtEscape) {
    window_.SetControlBar(controlBar_);
    Load();
    const auto notice = [&] { return window_.statusInformation().PanelText(kNoticePanel); };
    window_.SetPanelText(kNoticePanel, L"前の知らせ");
    {
        const frmMain::Reading reading(window_, L"読み込んでいます");
        window_.TellProgress(1, 10);
        EXPECT_EQ(notice(), L"前の知らせ");
        Sleep(350);
        for (const auto& [done, total, text] : {std::tuple{1, 10, L"読み込んでいます 10%"},
                                                {INT_MAX, 100, L"読み込んでいます 100%"},
                                                {-1, INT_MAX, L"読み込んでいます 0%"},
                                                {5, 0, L"読み込んでいます"}}) {
            const frmMain::Reading within(window_, L"内側");
            window_.TellProgress(done, total);
            EXPECT_EQ(notice(), text + std::wstring(L"（Esc で中止）"));
        }
        window_.SetPanelText(kNoticePanel, L"次の知らせ");
        EnableWindow(window_.Handle(), FALSE);
        PostMessageW(window_.pictureView().Handle(), WM_KEYDOWN, VK_ESCAPE, 0);
        Sleep(20);
        EXPECT_FALSE(window_.Breathe());
        EnableWindow(window_.Handle(), TRUE);
    }
    EXPECT_EQ(notice(), L"次の知らせ");
    window_.StopReading();  // there is nothing to stop
    const frmMain::Reading next(window_, L"読み込んでいます");
    EXPECT_TRUE(window_.Breathe());
    window_.SetPanelText(kNoticePanel, {});
    int edges[3]{};  // the panel is gone, and the one before has its room
    EXPECT_EQ(SendMessageW(window_.statusInformation().Handle(), SB_GETPARTS, 3,
                           reinterpret_cast<LPARAM>(edges)),
              2);
    EXPECT_EQ(edges[1], -1);
}

// Tells the procedure of the main window when its controls go, which is after its own unloading.
LRESULT CALLBACK ProbeProcedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                                UINT_PTR /*id*/, DWORD_PTR found) {
    if (message == WM_DESTROY) {
        *reinterpret_cast<LONG_PTR*>(found) = GetWindowLongPtrW(GetParent(control), GWLP_WNDPROC);
    }
    return DefSubclassProc(control, message, wParam, lParam);
}

TEST_F(CloseTest, PutsEverythingBack) {
    window_.SetControlBar(controlBar_);
    Load();
    ShowPicture(20, 20);
    WNDCLASSEXW own{};
    own.cbSize = sizeof(own);
    GetClassInfoExW(ProgramInstance(), L"TessaryMainWindow", &own);
    LONG_PTR found = GetWindowLongPtrW(window_.Handle(), GWLP_WNDPROC);
    EXPECT_NE(found, reinterpret_cast<LONG_PTR>(own.lpfnWndProc));  // subclassed
    SetWindowSubclass(window_.statusInformation().Handle(), ProbeProcedure, 1,
                      reinterpret_cast<DWORD_PTR>(&found));
    SendMessageW(window_.Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(found, reinterpret_cast<LONG_PTR>(own.lpfnWndProc));
    EXPECT_EQ(controlBar_.unloads, 1);
    EXPECT_EQ(CurrentPicture().info, nullptr);
    EXPECT_EQ(window_.pictureView().Picture(), nullptr);
    EXPECT_EQ(ended_, 1);
}

TEST_F(CloseTest, SessionEndClosesTheProgram) {
    Load();
    const HWND window = window_.Handle();
    {
        const SessionHold working(window, L"working");
        EXPECT_FALSE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
    }
    EXPECT_TRUE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
    const auto calledPlugin = [] { return GetSetting(L"SPI_CALLLOG", L"SPI"); };
    WriteCallLog({L"GetPicture", L"C:\\x.spi", {}});
    SendMessageW(window, WM_ENDSESSION, FALSE, 0);  // another program said no
    EXPECT_TRUE(IsWindow(window));
    EXPECT_EQ(calledPlugin(), L"x.spi");

    Values().readsUnderWay = 1;  // plug-ins must stay under a running decode
    Values().general.slideShowTime = 1234;
    EXPECT_TRUE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_TRUE(Values().quitRequested);
    EXPECT_EQ(ended_, 0);
    EXPECT_EQ(calledPlugin(), L"");  // it is not the plug-in's fault
    EXPECT_EQ(GetSetting(L"General", L"SlideShowTime", L""), L"1234");

    Values().readsUnderWay = 0;
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(ended_, 1);
}

}  // namespace
}  // namespace tessary
