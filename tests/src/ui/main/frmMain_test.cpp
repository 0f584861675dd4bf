// The main window's life: what it opens, what it tells, how it closes.
#include <windows.h>

#include <commctrl.h>

#include <climits>
#include <tuple>

#include "app/settings/settings_store.h"
#include "plugin/call_log.h"
#include "tests/src/ui/main/dropped_files.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/temporary_folder.h"
#include "ui/form/activity.h"
#include "ui/form/session_hold.h"

namespace tessary {
namespace {

using List = std::vector<std::wstring>;
using test::Drop;
using CloseTest = test::MainWindowTest;

class OpenFilesTest : public test::MainWindowTest {
  protected:
    test::TemporaryFolder folder_;
};

TEST_F(OpenFilesTest, CommandLineIsHandedOverAfterLoading) {
    const std::wstring inFolder = folder_.Write(L"絵\\b.bmp");
    const std::wstring file = folder_.Write(L"a 1.bmp");
    for (const auto& [named, lists, notice] :
         {std::tuple{List{file, folder_.Path() + L"絵"}, std::vector<List>{{file, inFolder}}, L""},
          {{file + L"2", file + L"3"}, {}, L"開けるファイルが見つかりませんでした。"},
          {{file + L"2", file}, {{file}}, L"1 個のファイルが見つかりませんでした。"}}) {
        controlBar_.lists.clear();
        frmMain window({.commandLine = named, .pluginCount = {}, .endProgram = {}});
        window.SetControlBar(controlBar_);
        ASSERT_TRUE(window.Load());
        EXPECT_TRUE(controlBar_.lists.empty());  // the window comes first
        DoEvents();
        EXPECT_EQ(controlBar_.lists, lists);
        EXPECT_EQ(window.statusInformation().PanelText(kNoticePanel), notice);
        window.OpenLater({file});
        DoEvents();
        EXPECT_EQ(window.statusInformation().PanelText(kNoticePanel), L"");
        window.Unload();
    }
}

TEST_F(OpenFilesTest, TakesDroppedFilesAndFoldersWhereItCanServeThem) {
    Load();
    const HWND window = window_.Handle();
    const std::wstring first = folder_.Write(L"1.bmp");
    const std::wstring second = folder_.Write(L"사진.bmp");
    const std::wstring inFolder = folder_.Write(L"中\\3.bmp");
    EXPECT_EQ(Drop(window, {second, first}), DROPEFFECT_COPY);
    EXPECT_TRUE(controlBar_.lists.empty());  // the source must not wait for the decoding
    DoEvents();
    EXPECT_EQ(Drop(window, {first}, DROPEFFECT_MOVE), DROPEFFECT_NONE);
    {
        const ReadUnderWay read;
        EXPECT_EQ(Drop(window, {first}), DROPEFFECT_NONE);
    }
    EnableWindow(window, FALSE);  // behind a dialog
    EXPECT_EQ(Drop(window, {first}), DROPEFFECT_NONE);
    EnableWindow(window, TRUE);
    ShowWindow(window, SW_SHOWNORMAL);
    SetForegroundWindow(GetDesktopWindow());  // the source is another program
    {
        const frmMain::Reading reading(window_, L"reading");
        EXPECT_EQ(Drop(window_.pictureView().Handle(), {folder_.Path() + L"中"},
                       DROPEFFECT_COPY | DROPEFFECT_MOVE),
                  DROPEFFECT_COPY);
        EXPECT_EQ(GetForegroundWindow(), window);  // the next keys are meant for us
        DoEvents();
        EXPECT_EQ(controlBar_.lists.size(), 1u);  // not before the end of the load
    }
    DoEvents();
    EXPECT_EQ(controlBar_.lists, (std::vector<List>{{first, second}, {inFolder}}));
    // A box tells of one file opened by hand, and never of one among others.
    controlBar_.failure = L"broken";
    window_.SetPanelText(kNoticePanel, L"起動のときの知らせ");
    for (const List& files : {List{first, second}, List{first}}) {
        EXPECT_TRUE(messages_.All().empty());
        window_.OpenLater(files);
        DoEvents();
    }
    EXPECT_EQ(messages_.Only(), L"broken");
    EXPECT_EQ(Panel(kNoticePanel), L"");
}

using ReadingTest = test::MainWindowTest;

TEST_F(ReadingTest, IsToldWhenItTakesLongAndStopsAtEscape) {
    Load();
    const auto notice = [&] { return Panel(kNoticePanel); };
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
    // The panel is gone.
    EXPECT_EQ(SendMessageW(window_.statusInformation().Handle(), SB_GETPARTS, 0, 0), 3);
}

TEST_F(ReadingTest, AsksAboutAPluginThatIsOverdue) {
    Load(400);
    ShowWindow(window_.Handle(), SW_SHOWNORMAL);
    const WaitedCall overdue{.plugin = LR"(C:\x\iftst.spi)", .isOverdue = true};
    const auto button = [&](const wchar_t* caption) {
        return FindWindowExW(window_.Handle(), nullptr, L"BUTTON", caption);
    };
    const auto press = [&](HWND part, UINT message, WPARAM key) {
        PostMessageW(part, message, key, 0);
        Sleep(40);
    };
    const auto isAsked = [&] { return IsWindowVisible(button(L"待つ(&W)")) && View().cy < 240; };
    std::optional<frmMain::Reading> reading(std::in_place, window_, L"読み込んでいます");
    const HWND view = window_.pictureView().Handle();
    window_.TakeFocus();
    struct Case {
        HWND part;
        UINT message;
        WPARAM key;
        CallWish wish;
    };
    for (const Case& c : {Case{button(L"待つ(&W)"), BM_CLICK, 0, CallWish::kMoreTime},
                          {button(L"中止(Esc)"), BM_CLICK, 0, CallWish::kGivenUp},
                          {view, WM_SYSCHAR, 'w', CallWish::kMoreTime},
                          {view, WM_KEYDOWN, VK_ESCAPE, CallWish::kGivenUp},
                          {button(L"待つ(&W)"), WM_KEYDOWN, VK_RETURN, CallWish::kMoreTime}}) {
        EXPECT_EQ(window_.AwaitsCall(overdue), CallWish::kAsksUser);
        EXPECT_TRUE(isAsked());
        EXPECT_EQ(GetFocus(), view) << "the keys stay where they were";
        if (c.message == WM_KEYDOWN && c.key == VK_RETURN) press(view, WM_KEYDOWN, VK_TAB);
        window_.AwaitsCall(overdue);
        press(c.part, c.message, c.key);
        EXPECT_EQ(window_.AwaitsCall(overdue), c.wish) << c.message << ' ' << c.key;
        EXPECT_FALSE(isAsked());
    }
    EXPECT_TRUE(controlBar_.pressed.empty());
    EXPECT_TRUE(window_.Breathe()) << "nothing of it stops the load";
    controlBar_.playing = true;
    EXPECT_EQ(window_.AwaitsCall(overdue), CallWish::kGoesOn) << "a show has nobody who answers";
    controlBar_.playing = false;
    EXPECT_EQ(window_.AwaitsCall(overdue), CallWish::kAsksUser);
    EXPECT_EQ(window_.AwaitsCall({}), CallWish::kGoesOn) << "it has answered";
    EXPECT_FALSE(isAsked());
    EXPECT_EQ(window_.AwaitsCall(overdue), CallWish::kAsksUser);
    reading.reset();
    EXPECT_FALSE(isAsked());
}

// What somebody who steps on leaves a plug-in.
TEST_F(ReadingTest, OneThatHangsIsGivenUpForWhatTheUserWantsInstead) {
    Load();
    const frmMain::Reading reading(window_, L"読み込んでいます");
    const WaitedCall working{.age = 3000, .silence = 3000, .mayTell = true};
    const WaitedCall waiting{.age = 1500, .silence = 1500, .idle = 1500, .mayTell = true};
    const WaitedCall listing{.age = 3000, .silence = 3000};
    const WaitedCall telling{.age = 9000, .mayTell = true};
    for (const auto& [call, some, strong] :
         {std::tuple{WaitedCall{.age = 900, .silence = 900, .idle = 900, .mayTell = true}, 0, 0},
          {working, 0, 1},
          {waiting, 0, 1},
          {listing, 0, 0},
          {telling, 0, 1},
          {WaitedCall{.idle = 2500}, 1, 1},
          {WaitedCall{.isOverdue = true}, 1, 1}}) {
        for (const auto& [urge, stops] :
             {std::pair{Urge::kNone, 0}, {Urge::kSome, some}, {Urge::kStrong, strong}}) {
            controlBar_.urge = urge;
            EXPECT_EQ(window_.AwaitsCall(call) == CallWish::kStops, stops != 0)
                << call.age << ' ' << static_cast<int>(urge);
        }
    }
}

TEST_F(CloseTest, WaitsForTheLoadAndPutsEverythingBack) {
    Load();
    ShowPicture(20, 20);
    {
        const ReadUnderWay read;
        EXPECT_TRUE(window_.Breathe());
        Choose(menuFileExit);
        EXPECT_NE(window_.Handle(), nullptr);
        EXPECT_TRUE(CurrentActivity().quitRequested);
        EXPECT_FALSE(window_.Breathe());  // the load is asked to stop
    }
    Choose(menuFileExit);
    EXPECT_EQ(window_.Handle(), nullptr);
    EXPECT_EQ(controlBar_.unloads, 1);
    EXPECT_FALSE(CurrentPicture());
    EXPECT_FALSE(window_.PictureShown());
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

    Values().general.slideShowTime = 1234;
    {
        const ReadUnderWay read;  // plug-ins must stay under a running decode
        EXPECT_TRUE(SendMessageW(window, WM_QUERYENDSESSION, 0, 0));
        SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    }
    EXPECT_TRUE(CurrentActivity().quitRequested);
    EXPECT_EQ(ended_, 0);
    EXPECT_EQ(calledPlugin(), L"");  // it is not the plug-in's fault
    EXPECT_EQ(GetSetting(L"General", L"SlideShowTime", L""), L"1234");
    SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(ended_, 1);
}

}  // namespace
}  // namespace tessary
