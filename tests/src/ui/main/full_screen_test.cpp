// The full screen, the mouse wheel, and where the window stands in the next run.
#include <tuple>
#include <utility>

#include "app/settings/settings_store.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/src/ui/run_until.h"
#include "ui/form/activity.h"
#include "ui/form/screen.h"
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
    void ExpectFull() const {
        ExpectSame(Frame(), Screen());
        EXPECT_EQ(GetMenu(window_.Handle()), nullptr);
        EXPECT_EQ(View().cx, Screen().right);
        EXPECT_EQ(View().cy, Screen().bottom);
    }
    static void ExpectSame(const RECT& now, const RECT& before) {
        EXPECT_TRUE(EqualRect(&now, &before))
            << now.left << ' ' << now.top << ' ' << now.right << ' ' << now.bottom;
    }
    // The wheel as the system sends it, over the middle of the view.
    void Wheel(int delta, WORD keys = 0) const {
        EXPECT_EQ(SendToView(WM_MOUSEWHEEL, MAKEWPARAM(keys, delta), 0), 0);
    }
};

TEST_F(FullScreenTest, HasRoomForWhatIsKnownOfThePicture) {
    ShowPicture(100, 60);
    const LONG whole = View().cx;
    Choose(commandShowInfo);
    EXPECT_EQ(Values().general.showInfo, 1);
    EXPECT_LT(View().cx, whole);
    EXPECT_EQ(window_.Info().Text(), L"画像\t100 × 60、24 ビット\r\n");
    Choose(commandTurnRight);
    EXPECT_TRUE(test::RunUntil(
        [&] { return window_.Info().Text().find(L"60 × 100") != std::wstring::npos; }));
    EXPECT_FALSE(window_.Info().HasFocus()) << "the keys stay the picture's";
    SendToView(WM_KEYDOWN, VK_TAB, 0);
    EXPECT_TRUE(window_.Info().TakesKey(VK_NEXT));
    EXPECT_FALSE(window_.Info().TakesKey(L'I'));
    Choose(commandFullScreen);
    EXPECT_LT(View().cx, Screen().right);
    Choose(menuEditClear);
    EXPECT_TRUE(test::RunUntil([&] { return window_.Info().Text() == L"画像がありません。"; }));
    Choose(commandEscape);
    EXPECT_EQ(Values().general.showInfo, 0);
    ExpectFull();
    Choose(commandEscape);
    EXPECT_EQ(View().cx, whole);
}

TEST_F(FullScreenTest, CoversTheScreenAndGivesEverythingBack) {
    Values().general.doubleClick = kDoubleClickFullScreen;
    ShowPicture(100, 60);
    controlBar_.visible = true;
    const HWND window = window_.Handle();
    const auto looks = [&] {
        return std::tuple(GetWindowLongW(window, GWL_STYLE), GetMenu(window), View().cy,
                          window_.Room().workArea.cy, controlBar_.visible);
    };
    for (const int state : {SW_SHOWNORMAL, SW_SHOWMAXIMIZED}) {
        ShowWindow(window, state);
        const RECT before = Frame();
        const auto looksBefore = looks();
        SendToView(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(9, 9));
        ExpectFull();
        constexpr LONG kOfTaskbar = WS_SYSMENU | WS_MINIMIZEBOX;
        EXPECT_EQ(GetWindowLongW(window, GWL_STYLE) & (kOfTaskbar | WS_MAXIMIZEBOX), kOfTaskbar);
        EXPECT_FALSE(controlBar_.visible);
        EXPECT_EQ(window_.Room().workArea.cy, Screen().bottom);
        EXPECT_EQ(Position().x, (Screen().right - 100) / 2);
        // Whoever moves it, the system to another scale for one, it stays on all of its screen.
        const RECT small{50, 60, 250, 260};
        SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(96, 96), reinterpret_cast<LPARAM>(&small));
        ExpectFull();
        SetWindowPos(window, nullptr, 50, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        ShowWindow(window, SW_MINIMIZE);
        ShowWindow(window, SW_RESTORE);
        ExpectFull();
        ChooseDuringARead(commandEscape);  // the way out is open while a slide show loads
        ExpectSame(Frame(), before);
        EXPECT_EQ(looks(), looksBefore);
    }
    ShowWindow(window, SW_RESTORE);
    EXPECT_LT(SizeOf(Frame()).cx, 600);
}

TEST_F(FullScreenTest, EscapeEndsTheNearestThing) {
    int cancelled = 0;  // deletions
    window_.Commands().Register(commandCancelDelete, {.run = [&] { ++cancelled; }});
    for (const auto& [isFull, isPlaying, isReading, stops, expected] :
         {std::tuple{true, false, false, 0, 0},
          {true, false, true, 0, 0},
          {false, false, false, 0, 1},
          {false, false, true, 1, 0},
          {true, true, false, 1, 0}}) {  // ends both
        cancelled = 0;
        controlBar_.pressed.clear();
        controlBar_.playing = isPlaying;
        if (isFull) Choose(commandFullScreen);
        isReading ? ChooseDuringARead(commandEscape) : Choose(commandEscape);
        EXPECT_NE(GetMenu(window_.Handle()), nullptr);
        EXPECT_EQ(controlBar_.pressed, std::vector<int>(stops, 4));
        EXPECT_EQ(cancelled, expected);
    }
}

TEST_F(FullScreenTest, WheelStepsByNotchesAndZoomsWithCtrl) {
    using Presses = std::vector<int>;
    const auto turn = [&](std::initializer_list<int> notches) {
        for (const int part : notches)
            Wheel(part);
        return std::exchange(controlBar_.pressed, {});
    };
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

    ShowPicture(400, 300);
    EXPECT_EQ(Panel(kScalePanel), L"100 %");
    for (const auto& [notches, scale] :
         {std::pair{1, L"125 %"}, {-2, L"80 %"}, {9, L"596 %"}, {99, L"1600 %"}}) {
        Wheel(notches * WHEEL_DELTA, MK_CONTROL);
        EXPECT_EQ(Panel(kScalePanel), scale);
    }
    SendToView(WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(9, 9));
    EXPECT_EQ(Panel(kScalePanel), L"100 %");
    ShowPicture(400, 300);
    Choose(commandZoomOut);
    window_.ClearPicture();
    EXPECT_EQ(Panel(kScalePanel), L"");
    Wheel(WHEEL_DELTA, MK_CONTROL);
    EXPECT_EQ(Panel(kScalePanel), L"");
}

TEST_F(FullScreenTest, NextRunStandsWhereThisOneWasLeft) {
    SetWindowPos(window_.Handle(), nullptr, 71, 83, 444, 333, SWP_NOZORDER);
    const RECT left = Frame();
    ShowWindow(window_.Handle(), SW_SHOWMAXIMIZED);
    Choose(commandFullScreen);
    ShowWindow(window_.Handle(), SW_SHOWMINIMIZED);
    window_.Unload();
    EXPECT_EQ(GetSetting(L"Window", L"Main_Maximized"), L"True");
    // What a shortcut says besides.
    for (const auto& [command, wasMaximized, isIconic, isZoomed] :
         {std::tuple{SW_SHOWNORMAL, true, false, true},
          {SW_SHOWMAXIMIZED, false, false, true},
          {SW_SHOWMINNOACTIVE, true, true, true},
          {SW_SHOWMINIMIZED, false, true, false},
          {SW_HIDE, true, false, true},
          {SW_HIDE, false, false, false}}) {
        SaveSetting(L"Window", L"Main_Maximized", wasMaximized ? L"-1" : L"0");
        frmMain next(
            {.commandLine = {}, .pluginCount = {}, .endProgram = {}, .showCommand = command});
        ASSERT_TRUE(next.Load());
        const HWND window = next.Handle();
        ExpectSame(FrameOf(window), left);  // hidden yet
        next.Show();
        EXPECT_TRUE(IsWindowVisible(window));
        EXPECT_EQ(IsIconic(window) != FALSE, isIconic) << command;
        if (isIconic) ShowWindow(window, SW_RESTORE);
        EXPECT_EQ(IsZoomed(window) != FALSE, isZoomed) << command;
        if (isZoomed) ShowWindow(window, SW_RESTORE);
        ExpectSame(FrameOf(window), left);
        DestroyWindow(window);
    }
}

TEST_F(FullScreenTest, APlaceThatIsNoneOrGoneIsReplaced) {
    const auto keep = [](const wchar_t* key, const wchar_t* value) {
        for (const wchar_t* const good : {L"Main_X", L"Main_Y", L"Main_Width", L"Main_Height"})
            SaveSetting(L"Window", good, L"200");
        SaveSetting(L"Window", key, value);
        return ReadMainPlacement();
    };
    EXPECT_TRUE(keep(L"Main_Maximized", L"-1")->maximized);
    EXPECT_FALSE(keep(L"Main_X", L"99999999") || keep(L"Main_Height", L"1") ||
                 keep(L"Main_Width", L"abc"));
    frmMain usual({});
    ASSERT_TRUE(usual.Load());
    EXPECT_EQ(SizeOf(FrameOf(usual.Handle())).cx, Screen().right / 2);
    usual.Unload();

    // On a screen that is gone only the place changes, and the size where there is no room. Of
    // another scale it looks as large and stays on the screen.
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const SIZE room = SizeOf(work);
    const int top = room.cy - 210;
    const RECT middle{(room.cx - 500) / 2, 0, (room.cx - 500) / 2 + 500, room.cy};
    for (const auto& [kept, dpi, expected] :
         {std::tuple{MainPlacement{{9000, 200}, {500, 20000}, 0, false}, 96, middle},
          {MainPlacement{{200, -200}, {500, 20000}, 0, false}, 96, middle},
          {MainPlacement{{30, top}, {300, 200}, 96, false}, 96, RECT{30, top, 330, top + 200}},
          {MainPlacement{{30, top}, {300, 200}, 96, false}, 192,
           RECT{30, room.cy - 400, 630, room.cy}},
          {MainPlacement{{-20, 40}, {300, 200}, 192, false}, 96, RECT{0, 40, 150, 140}}}) {
        ExpectSame(PlaceOnScreens(kept, dpi), expected);
    }
}

}  // namespace
}  // namespace tessary
