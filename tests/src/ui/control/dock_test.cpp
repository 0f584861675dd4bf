// The control bar as a part of the main window.
#include <algorithm>

#include "tests/src/ui/control/control_bar_test.h"
#include "ui/control/bar_layout.h"
#include "ui/form/screen.h"

namespace tessary::test {
namespace {

// Buttons of 24 pixels.
SIZE RowsOf(int width) {
    const int each = std::clamp(width / 24, 1, 16);
    return {24 * (width == 0 ? 16 : each), 24 * (width == 0 ? 1 : (16 + each - 1) / each)};
}

TEST(BarLayoutTest, PartsStandBesideEachOtherInTheBar) {
    for (int side = 0; side <= static_cast<int>(DockSide::kBottom); ++side) {
        for (const SIZE size : {SIZE{260, 700}, SIZE{480, 270}, SIZE{1900, 270}, SIZE{150, 400}}) {
            for (int bits = 0; bits < 8; ++bits) {
                const BarState state{.side = static_cast<DockSide>(side),
                                     .size = size,
                                     .folded = (bits & 1) != 0,
                                     .panelOpen = (bits & 2) != 0,
                                     .hasMembers = (bits & 4) != 0,
                                     .buttons = RowsOf};
                const BarParts parts = LayOutBar(state);
                const RECT all[] = {parts.grip,    parts.toolbar, parts.info,
                                    parts.slider,  parts.files,   parts.border,
                                    parts.members, parts.panel,   parts.edge};
                for (size_t i = 0; i < std::size(all); ++i) {
                    EXPECT_TRUE(all[i].left >= 0 && all[i].right <= size.cx && all[i].top >= 0)
                        << side << ' ' << size.cx << ' ' << bits << ' ' << i;
                    for (size_t k = 0; k < i; ++k) {
                        RECT both{};
                        EXPECT_FALSE(IntersectRect(&both, &all[i], &all[k]))
                            << side << ' ' << size.cx << ' ' << bits << ' ' << i << ' ' << k;
                    }
                }
                const bool unfolded = state.panelOpen || !state.folded;
                EXPECT_EQ(IsRectEmpty(&parts.files), !unfolded);
                EXPECT_EQ(IsRectEmpty(&parts.panel), !state.panelOpen);
            }
        }
    }
}

class DockTest : public ControlBarTest {
  protected:
    void SetUp() override {
        ControlBarTest::SetUp();
        SetWindowPos(window_.Handle(), nullptr, 50, 50, 900, 600, SWP_NOZORDER);
        window_.Show();
        bar_.SetFileList(Bitmaps(3));
        DoEvents();
    }
    void Press(int key) const {
        PostMessageW(GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        DoEvents();
    }
    RECT ViewFrame() const { return FrameOf(window_.pictureView().Handle()); }
    // The main window's part between status bar and menu.
    RECT Client() const {
        RECT area{};
        GetClientRect(window_.Handle(), &area);
        MapWindowPoints(window_.Handle(), nullptr, reinterpret_cast<POINT*>(&area), 2);
        area.bottom = FrameOf(window_.statusInformation().Handle()).top;
        return area;
    }
    bool IsPart() const { return GetAncestor(bar_.Handle(), GA_PARENT) == window_.Handle(); }
};

TEST_F(DockTest, StandsAtEachSideAndComesAfloatWhereItWas) {
    const RECT afloat = Frame();
    for (const DockSide side :
         {DockSide::kTop, DockSide::kLeft, DockSide::kRight, DockSide::kBottom}) {
        Choose(commandDock_0 + static_cast<int>(side));
        const RECT client = Client();
        RECT whole{};
        const RECT bar = Frame();
        const RECT view = ViewFrame();
        UnionRect(&whole, &bar, &view);
        EXPECT_TRUE(EqualRect(&whole, &client)) << static_cast<int>(side);
        const RECT strip =
            StripAt(client, side, IsVertical(side) ? SizeOf(bar).cx : SizeOf(bar).cy);
        EXPECT_TRUE(EqualRect(&strip, &bar)) << static_cast<int>(side);
        EXPECT_TRUE(IsPart() && bar_.IsVisible());
        // In a narrow bar there is a list of members only while there are any.
        EXPECT_EQ(IsWindowVisible(bar_.listArchiveFile().Handle()) != 0, !IsVertical(side));
        EXPECT_TRUE(IsWindowVisible(bar_.listFileName().Handle()));
        // The panel for deletion grows within the window.
        bar_.Press(BarButton::kDeleteList);
        DoEvents();
        EXPECT_TRUE(IsWindowVisible(bar_.listDelete().Handle()));
        const RECT list = FrameOf(bar_.listDelete().Handle());
        EXPECT_TRUE(SubtractRect(&whole, &list, &client) == FALSE) << static_cast<int>(side);
        Choose(commandDock_0);
        EXPECT_EQ(HeightAt96Dpi(), 270);
        EXPECT_FALSE(IsPart());
        EXPECT_EQ(GetWindow(bar_.Handle(), GW_OWNER), window_.Handle());
        Choose(commandDock_0 + static_cast<int>(side));
        bar_.Press(BarButton::kCancelDelete);
        // Folded it is a line, or a column of buttons.
        const LONG former =
            ViewFrame().right - ViewFrame().left + ViewFrame().bottom - ViewFrame().top;
        bar_.Press(BarButton::kFold);
        EXPECT_FALSE(IsWindowVisible(bar_.listFileName().Handle()));
        EXPECT_GT(ViewFrame().right - ViewFrame().left + ViewFrame().bottom - ViewFrame().top,
                  former);
        bar_.Press(BarButton::kFold);
    }
    bar_.SetFileList(List{Archive(L"a.tsa")});
    Choose(commandDock_2);
    EXPECT_TRUE(RunUntil([&] { return IsWindowVisible(bar_.listArchiveFile().Handle()); }));
    Choose(commandDock_0);
    const RECT back = Frame();
    EXPECT_TRUE(EqualRect(&back, &afloat));
    EXPECT_EQ(ViewFrame().left, Client().left);
}

TEST_F(DockTest, PlaceIsKeptAndAFirstStartHasItAtTheLeft) {
    Choose(commandDock_3);
    bar_.Unload();
    EXPECT_EQ(GetSetting(L"Window", L"ControlBarDock"), L"3");
    ASSERT_TRUE(bar_.Load(window_.Handle()));
    EXPECT_EQ(bar_.Side(), DockSide::kRight);
    EXPECT_TRUE(bar_.IsVisible());
    Choose(menuViewControlBar);  // out of sight it stays so, whatever is opened
    bar_.Unload();
    ASSERT_TRUE(bar_.SetFileList(Bitmaps(2)));
    EXPECT_FALSE(bar_.IsVisible());
    EXPECT_EQ(ViewFrame().right, Client().right);
    bar_.Unload();
    for (const auto& [x, stored, side] : {std::tuple{L"0", L"", DockSide::kFloating},
                                          {L"", L"", DockSide::kLeft},
                                          {L"", L"9", DockSide::kLeft},
                                          {L"0", L"x", DockSide::kFloating},
                                          {L"0", L"4", DockSide::kBottom}}) {
        SaveSetting(L"Window", L"ControlBar_X", x);
        SaveSetting(L"Window", L"ControlBarDock", stored);
        ASSERT_TRUE(bar_.Load(window_.Handle()));
        EXPECT_EQ(bar_.Side(), side) << x << stored;
        bar_.Unload();
    }
}

TEST_F(DockTest, KeyboardGoesFromPartToPartAndBackToThePicture) {
    Choose(commandDock_2);
    const HWND picture = window_.pictureView().Handle();
    const HWND files = bar_.listFileName().Handle();
    window_.TakeFocus();
    for (const HWND next : {files, bar_.CoolBar().Handle(), picture}) {
        Press(VK_F6);
        EXPECT_EQ(GetFocus(), next);
    }
    Press(VK_TAB);
    EXPECT_EQ(GetFocus(), bar_.CoolBar().Handle());
    ::SetFocus(files);
    for (const int key : {VK_NEXT, VK_SPACE, VK_BACK}) {
        const int at = Selected() + (key == VK_BACK ? -1 : 1);
        Press(key);
        EXPECT_EQ(Selected(), at) << key;  // once, not by both windows
    }
    EXPECT_EQ(GetFocus(), files);
    // The keyboard comes back to the list when the window does.
    SendMessageW(window_.Handle(), WM_ACTIVATE, WA_INACTIVE, 0);
    ::SetFocus(nullptr);
    SendMessageW(window_.Handle(), WM_SETFOCUS, 0, 0);
    EXPECT_EQ(GetFocus(), files);
    Press(VK_ESCAPE);
    EXPECT_EQ(GetFocus(), picture);
    // What goes out of sight does not keep it.
    ::SetFocus(files);
    Choose(menuViewControlBar);
    EXPECT_EQ(GetFocus(), picture);
}

TEST_F(DockTest, OnTheFullScreenItComesWithThePointerAndLeavesThePictureItsRoom) {
    Choose(commandDock_3);
    Choose(commandShowInfo);  // which stands at that edge as well
    Choose(commandFullScreen);
    EXPECT_FALSE(bar_.IsVisible());
    const RECT view = ViewFrame();
    const RECT screen = FrameOf(window_.Handle());
    const auto pointTo = [&](LONG x) {
        SetCursorPos(x, 300);
        PostMessageW(window_.pictureView().Handle(), WM_MOUSEMOVE, 0, 0);
        DoEvents();
    };
    pointTo(screen.right - 40);
    EXPECT_FALSE(bar_.IsVisible());
    pointTo(screen.right - 1);
    EXPECT_TRUE(bar_.IsVisible());
    EXPECT_EQ(Frame().right, screen.right);
    const RECT now = ViewFrame();
    EXPECT_TRUE(EqualRect(&view, &now));
    EXPECT_EQ(GetFocus(), window_.pictureView().Handle());
    Press(VK_RETURN);
    EXPECT_EQ(Selected(), 1);
    pointTo(screen.left + 100);
    EXPECT_TRUE(RunUntil([&] { return !bar_.IsVisible(); }));
    pointTo(screen.right - 1);
    Choose(commandFullScreen);  // with the bar there
    EXPECT_TRUE(bar_.IsVisible());
    EXPECT_EQ(ViewFrame().left, Client().left);
    EXPECT_LT(ViewFrame().right, Frame().left + 1);
}

}  // namespace
}  // namespace tessary::test
