// The full screen, the mouse wheel, and where the window stands in the next run.
#include "app/settings/settings_store.h"
#include "tests/src/ui/main/main_window.h"
#include "ui/form/screen.h"
#include "ui/main/window_placement.h"

namespace tessary {
namespace {

class FullScreenTest : public test::MainWindowTest {
  protected:
    void SetUp() override {
        window_.SetControlBar(controlBar_);
        Load();
        window_.Show();
    }

    static RECT FrameOf(const frmMain& window) {
        RECT frame{};
        GetWindowRect(window.Handle(), &frame);
        return frame;
    }
    RECT Frame() const { return FrameOf(window_); }
    // The whole screen; the tests' machine has one.
    static RECT Screen() {
        return {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    }
    bool IsFull() const {
        const RECT frame = Frame();
        const RECT screen = Screen();
        return EqualRect(&frame, &screen) && GetMenu(window_.Handle()) == nullptr &&
               View().cx == screen.right && View().cy == screen.bottom;
    }
    // The wheel as the system sends it, over the middle of the view.
    bool Wheel(int delta, WORD keys = 0) const {
        return SendToView(WM_MOUSEWHEEL, MAKEWPARAM(keys, delta), 0) == 0;
    }
    static void ExpectSame(const RECT& now, const RECT& before, const char* what) {
        EXPECT_TRUE(EqualRect(&now, &before))
            << what << ": " << now.left << ' ' << now.top << ' ' << now.right << ' ' << now.bottom;
    }
};

TEST_F(FullScreenTest, CoversTheScreenAndGivesEverythingBack) {
    ShowPicture(100, 60);
    controlBar_.visible = true;
    const HMENU menu = GetMenu(window_.Handle());
    for (const int state : {SW_SHOWNORMAL, SW_SHOWMAXIMIZED}) {
        ShowWindow(window_.Handle(), state);
        const RECT before = Frame();
        const LONG style = GetWindowLongW(window_.Handle(), GWL_STYLE);
        const SIZE work = window_.WorkAreaSize();
        SendToView(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(9, 9));
        EXPECT_TRUE(IsFull()) << state;
        constexpr LONG kOfTaskbar = WS_SYSMENU | WS_MINIMIZEBOX;
        EXPECT_EQ(GetWindowLongW(window_.Handle(), GWL_STYLE) & (kOfTaskbar | WS_MAXIMIZEBOX),
                  kOfTaskbar);
        EXPECT_FALSE(controlBar_.visible);
        EXPECT_EQ(window_.WorkAreaSize().cy, Screen().bottom);
        EXPECT_EQ(Position().x, (Screen().right - 100) / 2);
        // Whoever moves it, the system to another scale for one, it stays on all of its screen.
        const RECT small{50, 60, 250, 260};
        SendMessageW(window_.Handle(), WM_DPICHANGED, MAKEWPARAM(96, 96),
                     reinterpret_cast<LPARAM>(&small));
        EXPECT_TRUE(IsFull()) << state;
        SetWindowPos(window_.Handle(), nullptr, 50, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        ShowWindow(window_.Handle(), SW_MINIMIZE);
        ShowWindow(window_.Handle(), SW_RESTORE);
        EXPECT_TRUE(IsFull()) << state;
        Values().readsUnderWay = 1;  // the way out is open while a slide show loads
        Choose(commandEscape);
        Values().readsUnderWay = 0;
        ExpectSame(Frame(), before, "left");
        EXPECT_EQ(GetWindowLongW(window_.Handle(), GWL_STYLE), style);
        EXPECT_EQ(GetMenu(window_.Handle()), menu);
        EXPECT_EQ(window_.WorkAreaSize().cy, work.cy);
        EXPECT_TRUE(controlBar_.visible);
        EXPECT_LT(View().cy, before.bottom - before.top);  // the status bar is back
    }
    WINDOWPLACEMENT placement{};
    placement.length = sizeof(placement);
    GetWindowPlacement(window_.Handle(), &placement);
    EXPECT_LT(placement.rcNormalPosition.right - placement.rcNormalPosition.left, 600);

    int cancelled = 0;  // elsewhere Esc is the control bar's
    window_.Commands().Register(commandCancelDelete, {.run = [&] { ++cancelled; }});
    Choose(commandFullScreen);
    Choose(commandEscape);
    EXPECT_EQ(cancelled, 0);
    Choose(commandEscape);
    EXPECT_EQ(cancelled, 1);
    Values().readsUnderWay = 1;
    Choose(commandEscape);
    EXPECT_EQ(controlBar_.pressed, std::vector<int>{4});
    Values().readsUnderWay = 0;
    controlBar_.playing = true;
    Choose(commandFullScreen);
    Choose(commandEscape);  // ends both
    EXPECT_FALSE(IsFull());
    EXPECT_EQ(controlBar_.pressed.size(), 2u);
    EXPECT_EQ(cancelled, 1);
}

bool shownInMenu = false;
void CALLBACK LookAndEndMenu(HWND, UINT, UINT_PTR, DWORD) {
    shownInMenu = GetCursor() != nullptr;
    EndMenu();
}

TEST_F(FullScreenTest, PointerHidesWhileItRests) {
    const auto pointerHere = [&] {
        SendToView(WM_SETCURSOR, 0, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        return GetCursor();
    };
    Choose(commandFullScreen);
    EXPECT_NE(pointerHere(), nullptr);
    const DWORD start = GetTickCount();
    while (pointerHere() != nullptr && GetTickCount() - start < 20000) {
        SendToView(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));  // the system repeats that by itself
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
        DoEvents();
    }
    EXPECT_EQ(pointerHere(), nullptr);
    SendToView(WM_MOUSEMOVE, 0, MAKELPARAM(6, 5));
    EXPECT_NE(pointerHere(), nullptr);

    constexpr UINT kLonger = RestingPointer::kPatience + 500;
    const UINT_PTR timer = SetTimer(nullptr, 0, kLonger, LookAndEndMenu);
    SendToView(WM_CONTEXTMENU, 0, MAKELPARAM(9, 9));
    KillTimer(nullptr, timer);
    EXPECT_TRUE(shownInMenu);
}

TEST_F(FullScreenTest, WheelStepsByNotchesAndWithCtrlThroughTheSizes) {
    EXPECT_TRUE(Wheel(-WHEEL_DELTA));
    Wheel(WHEEL_DELTA);
    Wheel(-2 * WHEEL_DELTA);
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{5, 3, 5, 5}));
    for (int turn = 0; turn < 4; ++turn)
        Wheel(-WHEEL_DELTA / 4);
    Wheel(-WHEEL_DELTA / 2);
    Wheel(WHEEL_DELTA / 2);  // turned back: nothing is left over
    Wheel(WHEEL_DELTA / 2 - 1);
    EXPECT_EQ(controlBar_.pressed.size(), 5u);
    Wheel(1);
    EXPECT_EQ(controlBar_.pressed.back(), 3);
    Values().readsUnderWay = 1;
    Wheel(-WHEEL_DELTA);
    Values().readsUnderWay = 0;
    controlBar_.files = {L"a.bmp"};
    for (const int key : {VK_NEXT, VK_SPACE, VK_PRIOR, VK_BACK})
        PostMessageW(window_.pictureView().Handle(), WM_KEYDOWN, key, 0);
    DoEvents();
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{5, 3, 5, 5, 5, 3, 5, 5, 3, 3}));

    std::vector<int> sizes;
    for (int mode = kSizeModeOriginal; mode <= kSizeModeScreen; ++mode) {
        window_.Commands().Register(commandDisplaySize_0 + mode, {.run = [&, mode] {
                                        Values().fixSizeValue = static_cast<int16_t>(mode);
                                        sizes.push_back(mode);
                                    }});
    }
    for (const int notches : {-1, 1, 1, 9, 1, -1})
        Wheel(notches * WHEEL_DELTA, MK_CONTROL);
    EXPECT_EQ(sizes, (std::vector<int>{1, 2, 4, 3}));
}

TEST_F(FullScreenTest, WheelGoesToTheWindowBelowThePointer) {
    const HWND view = window_.pictureView().Handle();
    const HWND status = window_.statusInformation().Handle();
    const auto receiver = [](HWND focused, HWND below) {
        RECT place{};
        GetWindowRect(below, &place);
        MSG wheel{focused,
                  WM_MOUSEWHEEL,
                  MAKEWPARAM(0, WHEEL_DELTA),
                  MAKELPARAM(place.left + 4, place.top + 4),
                  0,
                  {}};
        EXPECT_FALSE(MessageFilter::AnyTakes(wheel));
        return wheel.hwnd;
    };
    EXPECT_EQ(receiver(status, view), view);
    EXPECT_EQ(receiver(view, status), status);
    EnableWindow(window_.Handle(), FALSE);  // behind a dialog
    EXPECT_EQ(receiver(status, view), status);
    EnableWindow(window_.Handle(), TRUE);
}

TEST_F(FullScreenTest, NextRunStandsWhereThisOneWasLeft) {
    SetWindowPos(window_.Handle(), nullptr, 71, 83, 444, 333, SWP_NOZORDER);
    const RECT left = Frame();
    ShowWindow(window_.Handle(), SW_SHOWMAXIMIZED);
    Choose(commandFullScreen);
    ShowWindow(window_.Handle(), SW_SHOWMINIMIZED);
    window_.Unload();
    frmMain next({});
    ASSERT_TRUE(next.Load());
    ExpectSame(FrameOf(next), left, "hidden");
    next.Show();
    EXPECT_TRUE(IsZoomed(next.Handle()));
    ShowWindow(next.Handle(), SW_RESTORE);
    ExpectSame(FrameOf(next), left, "restored");
    next.Unload();

    // What a shortcut says besides.
    for (const bool wasMaximized : {false, true}) {
        SaveSetting(L"Window", L"Main_Maximized", wasMaximized ? L"-1" : L"0");
        for (const int command :
             {SW_SHOWMAXIMIZED, SW_SHOWMINNOACTIVE, SW_SHOWMINIMIZED, SW_HIDE}) {
            frmMain started(
                {.commandLine = {}, .pluginCount = {}, .endProgram = {}, .showCommand = command});
            ASSERT_TRUE(started.Load());
            started.Show();
            EXPECT_TRUE(IsWindowVisible(started.Handle()));
            const bool isMinimized = command != SW_SHOWMAXIMIZED && command != SW_HIDE;
            EXPECT_EQ(IsIconic(started.Handle()) != FALSE, isMinimized) << command;
            if (isMinimized) ShowWindow(started.Handle(), SW_RESTORE);
            EXPECT_EQ(IsZoomed(started.Handle()) != FALSE,
                      wasMaximized || command == SW_SHOWMAXIMIZED)
                << command;
            DestroyWindow(started.Handle());
            SaveSetting(L"Window", L"Main_Maximized", wasMaximized ? L"-1" : L"0");
        }
    }

    frmMain usual({});
    for (const auto& [key, value] :
         {std::pair{L"Main_X", L"99999999"}, {L"Main_Width", L"abc"}, {L"Main_Height", L"1"}}) {
        for (const wchar_t* const good : {L"Main_X", L"Main_Y", L"Main_Width", L"Main_Height"})
            SaveSetting(L"Window", good, L"200");
        SaveSetting(L"Window", key, value);
        ASSERT_TRUE(usual.Load());
        EXPECT_EQ(FrameOf(usual).right - FrameOf(usual).left, Screen().right / 2) << value;
        usual.Unload();
    }

    // On a screen that is gone: only the place changes, and the size where there is no room.
    for (const auto& [key, value] : {std::pair{L"Main_X", L"9000"}, {L"Main_Y", L"-200"}}) {
        SaveSetting(L"Window", L"Main_Width", L"500");
        SaveSetting(L"Window", L"Main_Height", L"20000");
        SaveSetting(L"Window", L"Main_Maximized", L"-1");
        SaveSetting(L"Window", key, value);
        SaveSetting(L"Window", L"Main_Dpi", L"0");
        const std::optional<MainPlacement> kept = ReadMainPlacement();
        ASSERT_TRUE(kept);
        RECT work{};
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
        const SIZE room = SizeOf(work);
        ExpectSame(PlaceOnScreens(*kept, 96),
                   {(room.cx - 500) / 2, 0, (room.cx - 500) / 2 + 500, room.cy}, "moved");
        EXPECT_TRUE(kept->maximized);
        SaveSetting(L"Window", key, L"200");
    }
}

TEST_F(FullScreenTest, AfterAChangeOfTheScaleTheWindowLooksAsLargeAndStaysOnTheScreen) {
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const SIZE room = SizeOf(work);
    const MainPlacement kept{{30, room.cy - 210}, {300, 200}, 96, false};
    ExpectSame(PlaceOnScreens(kept, 96), {30, room.cy - 210, 330, room.cy - 10}, "same");
    ExpectSame(PlaceOnScreens(kept, 192), {30, room.cy - 400, 630, room.cy}, "larger");
    ExpectSame(PlaceOnScreens({{-20, 40}, {300, 200}, 192, false}, 96), {0, 40, 150, 140},
               "smaller");
}

}  // namespace
}  // namespace tessary
