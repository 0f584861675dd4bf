// Going through the files by the player's buttons.
#include "ui/control/player.h"

#include "app/base/stay_awake.h"
#include "tests/src/ui/control/control_bar_test.h"

namespace tessary::test {
namespace {

// Counts what is kept on by whom.
class ScreenWatch {
  public:
    ScreenWatch() {
        SetAwakeObserver([this](AwakeNeed need, bool isOn) {
            if (need == AwakeNeed::kScreen) count += isOn ? 1 : -1;
        });
    }
    ~ScreenWatch() { SetAwakeObserver({}); }

    int count = 0;
};

TEST(TransportTest, PausesBehindEachStepAndKeepsTheScreenOn) {
    const RedirectedSettings settings;
    Values().general.slideShowTime = 5000;
    const ScreenWatch screens;
    int steps = 0;
    int ends = 0;
    bool isSeen = true;
    bool mayStep = true;
    Player player({.back = [] { return false; },
                   .forward = [&] { return ++steps < 3; },
                   .atEnd = [&] { ++ends; },
                   .mayStep = [&] { return mayStep; },
                   .isSeen = [&] { return isSeen; },
                   .inBurst = [](const std::function<void()>& run) { run(); }});
    player.Start(BarButton::kPlay);
    player.Start(BarButton::kPlay);  // still one show
    struct Tick {
        DWORD later;
        bool may, seen;
        int steps, ends;
    };
    for (const Tick& tick : {Tick{6000, true, true, 1, 0},
                             {3000, true, false, 1, 0},
                             {6000, false, true, 1, 0},
                             {6000, true, true, 2, 0},
                             {6000, true, true, 3, 1}}) {
        mayStep = tick.may;
        isSeen = tick.seen;
        player.Timer1_Timer(GetTickCount() + tick.later);
        EXPECT_EQ(steps, tick.steps);
        EXPECT_EQ(ends, tick.ends);
        EXPECT_EQ(screens.count, tick.seen);
    }
    player.HaltTimer();
    EXPECT_EQ(player.PlayMode(), BarButton::kPlay);
    EXPECT_EQ(screens.count, 0);
}

using PlayerTest = ControlBarTest;

TEST_F(PlayerTest, PlaysToTheEndAndStops) {
    Values().general.slideShowTime = 0;
    const std::wstring text = folder_.Write(L"a.txt", "text");
    bar_.SetFileList(List{text, Bitmap(L"1.bmp"), Archive(L"2.tsa"), text, Bitmap(L"3.bmp")});
    for (const int expected : {1, 2, 2, 2, 4}) {
        EXPECT_TRUE(bar_.ListIndexForwardOne());
        EXPECT_EQ(Selected(), expected);
    }
    EXPECT_TRUE(bar_.ListIndexBackOne());
    EXPECT_EQ(Info(), L"[圧縮] 2.tsa - [画像] b9.tst ( 9×4 24bit )");
    bar_.Press(BarButton::kPlay);
    EXPECT_FALSE(IsEnabled(BarButton::kDeleteList));
    EXPECT_EQ(bar_.PlayMode(), BarButton::kPlay);
    EXPECT_TRUE(StopsByItself());
    EXPECT_EQ(Selected(), 4);
    EXPECT_TRUE(IsEnabled(BarButton::kDeleteList));
    bar_.Press(BarButton::kRewind);
    EXPECT_TRUE(StopsByItself());
    EXPECT_EQ(Selected(), -1);
    EXPECT_EQ(Info(), L"[画像] 1.bmp ( 8×6 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] 1.bmp ( 8×6 24bit )");
}

TEST_F(PlayerTest, StepsStopTheShowAndFailuresDoNot) {
    Values().general.slideShowTime = 0;
    const std::wstring broken = folder_.Write(L"b.tst", "TST 8x8x24\ncrash:av:GetPicture\n");
    bar_.SetFileList(List{Bitmap(L"1.bmp"), broken, broken, Bitmap(L"4.bmp", 16)});
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(RunUntil([&] { return Selected() == 3; }));
    EXPECT_TRUE(StopsByItself());
    EXPECT_EQ(Info(), L"[画像] 4.bmp ( 16×6 24bit )");
    bar_.Press(BarButton::kReversePlay);
    bar_.Press(BarButton::kStepBack);
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    EXPECT_EQ(Selected(), 2);
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(PlayerTest, DeleteDuringAShowTakesWhatIsSeen) {
    Values().general.slideShowTime = 10000;
    const List files = Bitmaps(3);
    bar_.SetFileList(files);
    const auto pressDelete = [&] {
        window_.Commands().Run(commandAddToDeleteList);
        return RunUntil([&] { return bar_.listDelete().Count() > 0; }, 500);
    };
    bar_.Press(BarButton::kFastForward);
    EXPECT_FALSE(pressDelete());
    EXPECT_EQ(Note(), L"早送りや巻き戻しを止めてから、もう一度押してください。");
    bar_.SetFileList(files);
    bar_.Press(BarButton::kPlay);
    EXPECT_TRUE(pressDelete());
    EXPECT_EQ(Items(bar_.listDelete()), List{files[0]});
    EXPECT_EQ(Info(), L"[画像] 2.bmp ( 8×6 24bit )");
    EXPECT_EQ(bar_.PlayMode(), BarButton::kPlay);
    EXPECT_FALSE(RunUntil([&] { return Selected() != 0; }, 100));  // it is shown as long as others
}

TEST_F(PlayerTest, AShowBehindADialogOrMinimisedIsNotSeen) {
    const ScreenWatch screens;
    window_.Show();
    bar_.SetFileList(Bitmaps(3));
    bar_.Press(BarButton::kPlay);
    const HWND main = window_.Handle();
    for (const auto& change :
         {+[](HWND window, bool back) { EnableWindow(window, back); },
          +[](HWND window, bool back) { ShowWindow(window, back ? SW_RESTORE : SW_MINIMIZE); }}) {
        for (const bool isSeen : {false, true}) {
            change(main, isSeen);
            EXPECT_TRUE(RunUntil([&] { return screens.count == isSeen; }));
        }
    }
    window_.Unload();
    EXPECT_EQ(screens.count, 0);
}

TEST_F(PlayerTest, DisplaySizesGoRound) {
    Values().fixSizeValue = 3;
    bar_.SetFileList(Bitmaps(1));
    for (const int expected : {4, 0, 1}) {
        bar_.Press(BarButton::kDisplaySize);
        EXPECT_EQ(Values().fixSizeValue, expected);
    }
    EXPECT_EQ(window_.pictureView().PictureSize().cx, 640);  // at once, not with the next file
}

}  // namespace
}  // namespace tessary::test
