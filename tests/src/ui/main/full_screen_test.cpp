// The full screen, the mouse wheel, and where the window stands in the next run.
#include <tuple>

#include "app/settings/settings_store.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/src/ui/run_until.h"
#include "ui/form/activity.h"
#include "ui/form/screen.h"
#include "ui/form/timer.h"
#include "ui/main/window_placement.h"

namespace tessary {
namespace {

class FullScreenTest : public test::MainWindowTest {
  protected:
    void SetUp() override {
        Load();
        window_.Show();
    }

    RECT Frame() const { return FrameOf(window_.Handle()); }
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
    static void ExpectSame(const RECT& now, const RECT& before) {
        EXPECT_TRUE(EqualRect(&now, &before))
            << now.left << ' ' << now.top << ' ' << now.right << ' ' << now.bottom;
    }
};

TEST_F(FullScreenTest, CoversTheScreenAndGivesEverythingBack) {
    ShowPicture(100, 60);
    controlBar_.visible = true;
    const HWND window = window_.Handle();
    const auto looks = [&] {
        return std::tuple(GetWindowLongW(window, GWL_STYLE), GetMenu(window), View().cy,
                          window_.WorkAreaSize().cy, controlBar_.visible);
    };
    for (const int state : {SW_SHOWNORMAL, SW_SHOWMAXIMIZED}) {
        ShowWindow(window, state);
        const RECT before = Frame();
        const auto looksBefore = looks();
        SendToView(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(9, 9));
        EXPECT_TRUE(IsFull()) << state;
        constexpr LONG kOfTaskbar = WS_SYSMENU | WS_MINIMIZEBOX;
        EXPECT_EQ(GetWindowLongW(window, GWL_STYLE) & (kOfTaskbar | WS_MAXIMIZEBOX), kOfTaskbar);
        EXPECT_FALSE(controlBar_.visible);
        EXPECT_EQ(window_.WorkAreaSize().cy, Screen().bottom);
        EXPECT_EQ(Position().x, (Screen().right - 100) / 2);
        // Whoever moves it, the system to another scale for one, it stays on all of its screen.
        const RECT small{50, 60, 250, 260};
        SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&small));
        EXPECT_TRUE(IsFull()) << state;
        SetWindowPos(window, nullptr, 50, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        ShowWindow(window, SW_MINIMIZE);
        ShowWindow(window, SW_RESTORE);
        EXPECT_TRUE(IsFull()) << state;
        ChooseDuringARead(commandEscape);  // the way out is open while a slide show loads
        ExpectSame(Frame(), before);
        EXPECT_EQ(looks(), looksBefore);
    }
    ShowWindow(window, SW_RESTORE);
    EXPECT_LT(SizeOf(Frame()).cx, 600);

    int cancelled = 0;  // elsewhere Esc is the control bar's
    window_.Commands().Register(commandCancelDelete, {.run = [&] { ++cancelled; }});
    Choose(commandFullScreen);
    Choose(commandEscape);
    EXPECT_EQ(cancelled, 0);
    Choose(commandEscape);
    EXPECT_EQ(cancelled, 1);
    ChooseDuringARead(commandEscape);
    EXPECT_EQ(controlBar_.pressed, std::vector<int>{4});
    controlBar_.playing = true;
    Choose(commandFullScreen);
    Choose(commandEscape);  // ends both
    EXPECT_FALSE(IsFull());
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{4, 4}));
    EXPECT_EQ(cancelled, 1);
}

TEST_F(FullScreenTest, PointerHidesWhileItRests) {
    const auto pointerHere = [&] {
        SendToView(WM_SETCURSOR, 0, MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        return GetCursor();
    };
    Choose(commandFullScreen);
    EXPECT_NE(pointerHere(), nullptr);
    EXPECT_TRUE(test::RunUntil(
        [&] {
            SendToView(WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));  // the system repeats that by itself
            return pointerHere() == nullptr;
        },
        20000));
    SendToView(WM_MOUSEMOVE, 0, MAKELPARAM(6, 5));
    EXPECT_NE(pointerHere(), nullptr);

    bool shownInMenu = false;
    Timer look([&] {
        shownInMenu = GetCursor() != nullptr;
        EndMenu();
    });
    look.Start(RestingPointer::kPatience + 200);
    SendToView(WM_CONTEXTMENU, 0, MAKELPARAM(9, 9));
    EXPECT_TRUE(shownInMenu);
}

TEST_F(FullScreenTest, WheelStepsByNotchesAndWithCtrlThroughTheSizes) {
    const auto turn = [&](std::initializer_list<int> notches) {
        controlBar_.pressed.clear();
        for (const int part : notches)
            EXPECT_TRUE(Wheel(part));
        return controlBar_.pressed;
    };
    using Presses = std::vector<int>;
    constexpr int kHalf = WHEEL_DELTA / 2;
    EXPECT_EQ(turn({-WHEEL_DELTA, WHEEL_DELTA, -2 * WHEEL_DELTA}), (Presses{5, 3, 5, 5}));
    EXPECT_EQ(turn({-kHalf / 2, -kHalf / 2, -kHalf / 2, -kHalf / 2}), Presses{5});
    // Turned back: nothing is left over.
    EXPECT_EQ(turn({-kHalf, kHalf, kHalf - 1}), Presses{});
    EXPECT_EQ(turn({1}), Presses{3});
    {
        const ReadUnderWay read;
        EXPECT_EQ(turn({-WHEEL_DELTA}), Presses{});
    }
    controlBar_.files = {L"a.bmp"};
    for (const int key : {VK_NEXT, VK_SPACE, VK_PRIOR, VK_BACK})
        PostMessageW(window_.pictureView().Handle(), WM_KEYDOWN, key, 0);
    DoEvents();
    EXPECT_EQ(controlBar_.pressed, (Presses{5, 5, 3, 3}));

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
        const RECT place = FrameOf(below);
        MSG wheel{};
        wheel.hwnd = focused;
        wheel.message = WM_MOUSEWHEEL;
        wheel.wParam = MAKEWPARAM(0, WHEEL_DELTA);
        wheel.lParam = MAKELPARAM(place.left + 4, place.top + 4);
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
    ExpectSame(FrameOf(next.Handle()), left);  // hidden yet
    next.Show();
    EXPECT_TRUE(IsZoomed(next.Handle()));
    ShowWindow(next.Handle(), SW_RESTORE);
    ExpectSame(FrameOf(next.Handle()), left);
    next.Unload();

    // What a shortcut says besides.
    for (const bool wasMaximized : {false, true}) {
        for (const int command :
             {SW_SHOWMAXIMIZED, SW_SHOWMINNOACTIVE, SW_SHOWMINIMIZED, SW_HIDE}) {
            SaveSetting(L"Window", L"Main_Maximized", wasMaximized ? L"-1" : L"0");
            frmMain started(
                {.commandLine = {}, .pluginCount = {}, .endProgram = {}, .showCommand = command});
            ASSERT_TRUE(started.Load());
            const HWND window = started.Handle();
            started.Show();
            EXPECT_TRUE(IsWindowVisible(window));
            const bool isMinimized = command != SW_SHOWMAXIMIZED && command != SW_HIDE;
            EXPECT_EQ(IsIconic(window) != FALSE, isMinimized) << command;
            if (isMinimized) ShowWindow(window, SW_RESTORE);
            EXPECT_EQ(IsZoomed(window) != FALSE, wasMaximized || command == SW_SHOWMAXIMIZED)
                << command;
            DestroyWindow(window);
        }
    }
}

TEST_F(FullScreenTest, APlaceThatIsNoneOrGoneIsReplaced) {
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const SIZE room = SizeOf(work);
    const auto keep = [](const wchar_t* key, const wchar_t* value) {
        for (const wchar_t* const good : {L"Main_X", L"Main_Y", L"Main_Width", L"Main_Height"})
            SaveSetting(L"Window", good, L"200");
        SaveSetting(L"Window", key, value);
        return ReadMainPlacement();
    };
    EXPECT_FALSE(keep(L"Main_X", L"99999999") || keep(L"Main_Height", L"1") ||
                 keep(L"Main_Width", L"abc"));
    frmMain usual({});
    ASSERT_TRUE(usual.Load());
    EXPECT_EQ(SizeOf(FrameOf(usual.Handle())).cx, Screen().right / 2);
    usual.Unload();
    SaveSetting(L"Window", L"Main_Maximized", L"-1");
    EXPECT_TRUE(keep(L"Main_X", L"200")->maximized);

    // On a screen that is gone only the place changes, and the size where there is no room. Of
    // another scale it looks as large and stays on the screen.
    const int top = room.cy - 210;
    const int middle = (room.cx - 500) / 2;
    for (const auto& [kept, dpi, expected] :
         {std::tuple{MainPlacement{{9000, 200}, {500, 20000}, 0, false}, 96,
                     RECT{middle, 0, middle + 500, room.cy}},
          {MainPlacement{{200, -200}, {500, 20000}, 0, false}, 96,
           RECT{middle, 0, middle + 500, room.cy}},
          {MainPlacement{{30, top}, {300, 200}, 96, false}, 96, RECT{30, top, 330, top + 200}},
          {MainPlacement{{30, top}, {300, 200}, 96, false}, 192,
           RECT{30, room.cy - 400, 630, room.cy}},
          {MainPlacement{{-20, 40}, {300, 200}, 192, false}, 96, RECT{0, 40, 150, 140}}}) {
        ExpectSame(PlaceOnScreens(kept, dpi), expected);
    }
}

}  // namespace
}  // namespace tessary
