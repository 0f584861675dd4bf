// The control bar's window: its place, its delete panel, its keys.
#include <tuple>

#include "tests/src/ui/control/control_bar_test.h"
#include "ui/control/panel_place.h"
#include "ui/form/activity.h"
#include "ui/form/screen.h"

namespace tessary::test {
namespace {

class BarWindowTest : public ControlBarTest {
  protected:
    void SetUp() override {
        ControlBarTest::SetUp();
        files_ = Bitmaps(4);
        bar_.SetFileList(files_);
        window_.Show();
        DoEvents();
    }
    // A key pressed where the focus is.
    static void Press(int key, UINT message = WM_KEYDOWN, LPARAM state = 0) {
        PostMessageW(GetFocus(), message, static_cast<WPARAM>(key), state);
        DoEvents();
    }
    void MoveBar(int x, int y) const {
        SetWindowPos(bar_.Handle(), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    }
    HWND Picture() const { return window_.pictureView().Handle(); }

    List files_;
};

TEST_F(BarWindowTest, DeletePanelOpensAndAsksBeforeAnythingIsLost) {
    Values().general.atListEnd = kEndListed;
    bar_.ListIndexBackOne();  // from the first file to none
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(messages_.Only(),
              L"ファイルが選択されていません。削除するファイルをリストから選んでください。");
    Click(bar_.listFileName(), 0);
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(HeightAt96Dpi(), 270);
    EXPECT_FALSE(IsEnabled(BarButton::kFold));
    EXPECT_EQ(Info(), L"[画像] 2.bmp ( 8×6 24bit )");  // the next one is up
    bar_.Press(BarButton::kDeleteList);
    EXPECT_NE(FindWindowExW(bar_.Handle(), nullptr, L"STATIC", L"2 個のファイル"), nullptr);
    Click(bar_.listDelete(), 0, LBN_DBLCLK);
    EXPECT_EQ(Items(bar_.listFileName()), (List{files_[2], files_[3], files_[0]}));

    int asked = 0;
    SetMessageBoxResponder([&](const auto&, unsigned, const auto&) {
        ++asked;
        return IDCANCEL;
    });
    Choose(commandEscape);
    EXPECT_EQ(asked, 1);
    SendMessageW(window_.Handle(), WM_CLOSE, 0, 0);
    EXPECT_EQ(asked, 2);
    EXPECT_FALSE(CurrentActivity().quitRequested);
    // Enter behind a cancelled deletion steps on, and a key that is held down asks nothing.
    ::SetFocus(PanelButton());
    Press(VK_RETURN, WM_KEYDOWN, LPARAM{KF_REPEAT} << 16);
    EXPECT_EQ(asked, 2);
    for (const int step : {0, 1, 2}) {
        Press(VK_RETURN);
        EXPECT_EQ(asked, 3);
        EXPECT_EQ(Selected(), step);
    }
    SetMessageBoxResponder([&](const auto&, unsigned style, const auto&) {
        if ((style & MB_TYPEMASK) == MB_OKCANCEL) return IDOK;
        bar_.Press(BarButton::kDeleteList);  // too late while a deletion runs
        return IDIGNORE;
    });
    for (const DWORD sharing : {0, FILE_SHARE_DELETE}) {
        const UniqueFile file(CreateFileW(files_[1].c_str(), GENERIC_READ, sharing, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        SendMessageW(PanelButton(), BM_CLICK, 0, 0);
        EXPECT_EQ(Items(bar_.listDelete()), sharing == 0 ? List{files_[1]} : List{});
    }
    EXPECT_EQ(HeightAt96Dpi(), 130);
    EXPECT_TRUE(IsEnabled(BarButton::kFold));
    EXPECT_EQ(bar_.listFileName().Count(), 3);
}

TEST_F(BarWindowTest, KeysStepFromEveryPart) {
    const auto stepsFrom = [&](HWND part, std::vector<int> keys) {
        ::SetFocus(part);
        for (const int key : keys) {
            const int at = Selected() + (key == VK_BACK || key == VK_PRIOR ? -1 : 1);
            Press(key);
            EXPECT_EQ(Selected(), at) << key;
        }
    };
    stepsFrom(Picture(), {VK_NEXT, VK_SPACE, VK_PRIOR, VK_BACK});
    stepsFrom(bar_.listFileName().Handle(), {VK_NEXT, VK_BACK, VK_SPACE, VK_PRIOR, VK_RETURN});
    stepsFrom(bar_.textFileInfo().Handle(), {VK_NEXT, VK_PRIOR, VK_SPACE, VK_BACK});
    stepsFrom(bar_.CoolBar().Handle(), {VK_NEXT, VK_PRIOR, VK_NEXT, VK_BACK});
    bar_.listFileName().SetFocus();
    Press('F');  // no button is under the keys then
    EXPECT_EQ(GetFocus(), bar_.Handle());
    stepsFrom(bar_.Handle(), {VK_NEXT, VK_RETURN, VK_PRIOR, VK_BACK});
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    Press('F');
    EXPECT_EQ(GetFocus(), bar_.listFileName().Handle());
}

TEST_F(BarWindowTest, TabGoesRoundBothWindowsAndF6Between) {
    const auto round = [&] {
        std::vector<HWND> stops;
        window_.TakeFocus();
        do {
            Press(VK_TAB);
            stops.push_back(GetFocus());
        } while (GetFocus() != Picture() && stops.size() < 20);
        return stops;
    };
    const HWND toolbar = bar_.CoolBar().Handle();
    const HWND files = bar_.listFileName().Handle();
    EXPECT_EQ(round(), (std::vector<HWND>{toolbar, bar_.textFileInfo().Handle(),
                                          bar_.sliderPlace().Handle(), files, Picture()}));
    for (const HWND next : {files, Picture()}) {
        Press(VK_F6);
        EXPECT_EQ(GetFocus(), next);
    }
    bar_.SetVisible(false);
    for (const int key : {VK_TAB, VK_F6}) {
        Press(key);
        EXPECT_EQ(GetFocus(), Picture());
    }
    bar_.SetVisible(true);
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(round().size(), 9u);  // the panel's list and buttons too
    bar_.Press(BarButton::kCancelDelete);
    bar_.Press(BarButton::kFold);
    EXPECT_EQ(round(), (std::vector<HWND>{toolbar, Picture()}));
    Press(VK_F6);
    EXPECT_TRUE(bar_.CoolBar().HasFocus() || GetFocus() == bar_.Handle());
    Press(VK_F4, WM_SYSKEYDOWN, 1 << 29);  // with Alt
    EXPECT_EQ(window_.Handle(), nullptr);
}

TEST(PanelPlaceTest, KeepsToolbarWorkAreaAndTitle) {
    const RECT work{0, 0, 1000, 700};
    const RECT title{200, 300, 800, 350};
    for (const auto& [bar, frame, above] :
         {std::tuple{POINT{10, 10}, POINT{10, 10}, false},  // there is room below
          {{200, 160}, {200, 20}, true},                    // the title is below
          {{200, 560}, {200, 420}, true},                   // the screen ends below
          {{200, 80}, {200, 30}, false},                    // no room above either
          {{900, 560}, {520, 430}, false},                  // beyond the right edge
          {{250, 320}, {250, 350}, false}}) {               // upon the title
        const PanelPlace place =
            PlacePanel({bar.x, bar.y, bar.x + 480, bar.y + 130}, 270, 140, work, title);
        const RECT expected{frame.x, frame.y, frame.x + 480, frame.y + 270};
        EXPECT_TRUE(EqualRect(&place.frame, &expected)) << bar.x << " " << bar.y;
        EXPECT_EQ(place.above, above) << bar.x << " " << bar.y;
    }
}

TEST_F(BarWindowTest, PanelOpenedOnTheFullScreenLeavesTheTitleInSight) {
    SetWindowPos(window_.Handle(), nullptr, 200, 340, 600, 300, SWP_NOZORDER);
    MoveBar(200, 200);
    Choose(commandFullScreen);
    Press(VK_DELETE);
    Choose(commandFullScreen);
    EXPECT_TRUE(bar_.IsVisible());
    EXPECT_EQ(HeightAt96Dpi(), 270);
    EXPECT_LE(Frame().bottom, 340);
    bar_.Press(BarButton::kCancelDelete);
    EXPECT_EQ(Frame().left, 200);
    EXPECT_EQ(Frame().top, 200);
}

TEST_F(BarWindowTest, FoldStateAndPlaceAreKept) {
    EXPECT_EQ(HeightAt96Dpi(), 130);
    bar_.Press(BarButton::kFold);
    EXPECT_FALSE(IsWindowVisible(bar_.listFileName().Handle()));
    MoveBar(40, 60);
    bar_.Unload();
    EXPECT_FALSE(bar_.HasFiles());
    EXPECT_EQ(GetSetting(L"Window", L"ControlBarRollUP"), L"True");
    EXPECT_EQ(GetSetting(L"Window", L"ControlBar_X"), L"600");
    SaveSetting(L"Window", L"ControlBar_X", L"-50");
    ASSERT_TRUE(bar_.Load(window_.Handle()));
    EXPECT_EQ(Frame().left, 0);
    EXPECT_EQ(Frame().top, 60);
    EXPECT_EQ(HeightAt96Dpi(), 28);

    // Where the buttons would be out of reach it comes back when it is shown.
    const RECT work = ScreenOf(bar_.Handle()).rcWork;
    MoveBar(40, work.bottom - 5);
    bar_.SetVisible(true);
    EXPECT_EQ(Frame().left, 40);
    EXPECT_EQ(Frame().bottom, work.bottom);

    // Unfolding during a fast run leaves no list behind.
    bar_.SetFileList(List{files_[0], folder_.Write(L"2.tst", "TST 8x8x24\n")});
    Sleep(25);  // so long a load keeps the messages waiting
    PostMessageW(window_.Handle(), WM_COMMAND, menuControl_5, 0);
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(StopsByItself());
    EXPECT_FALSE(bar_.IsRollUp());
    EXPECT_TRUE(IsWindowVisible(bar_.listFileName().Handle()));
}

}  // namespace
}  // namespace tessary::test
