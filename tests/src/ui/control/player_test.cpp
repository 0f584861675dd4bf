// Going through the files by the player's buttons.
#include "ui/control/player.h"

#include <set>
#include <tuple>

#include "app/base/paths.h"
#include "app/base/stay_awake.h"
#include "tests/src/ui/control/control_bar_test.h"
#include "tests/src/ui/message_spy.h"

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

TEST(TransportTest, PausesBehindEachStep) {
    const RedirectedSettings settings;
    Values().general.slideShowTime = 5000;
    int steps = 0;
    int ends = 0;
    bool mayStep = true;
    Player player({.back = [] { return false; },
                   .forward = [&] { return ++steps < 3; },
                   .atEnd = [&] { ++ends; },
                   .mayStep = [&] { return mayStep; },
                   .isSeen = [] { return true; },
                   .inBurst = [](const std::function<void()>& run) { run(); }});
    player.Start(BarButton::kPlay);
    for (const auto& [later, may, expectedSteps, expectedEnds] : {std::tuple{6000, true, 1, 0},
                                                                  {3000, true, 1, 0},
                                                                  {6000, false, 1, 0},
                                                                  {6000, true, 2, 0},
                                                                  {6000, true, 3, 1}}) {
        mayStep = may;
        player.Timer1_Timer(GetTickCount() + later);
        EXPECT_EQ(steps, expectedSteps);
        EXPECT_EQ(ends, expectedEnds);
    }
}

using PlayerTest = ControlBarTest;

TEST_F(PlayerTest, PlaysToBothEndsOverWhatFails) {
    Values().general.slideShowTime = 0;
    const std::wstring broken = folder_.Write(L"b.tst", "TST 8x8x24\ncrash:av:GetPicture\n");
    bar_.SetFileList(List{Bitmap(L"1.bmp"), Archive(L"2.tsa"), folder_.Write(L"a.txt", "text"),
                          broken, broken, Bitmap(L"4.bmp", 16)});
    for (const BarButton motion : {BarButton::kFastForward, BarButton::kRewind, BarButton::kPlay}) {
        bar_.Press(motion);
        EXPECT_EQ(bar_.PlayMode(), motion);
        EXPECT_FALSE(IsEnabled(BarButton::kDeleteList));
        EXPECT_TRUE(StopsByItself());
        EXPECT_TRUE(IsEnabled(BarButton::kDeleteList));
        const bool isBack = motion == BarButton::kRewind;
        EXPECT_EQ(Selected(), isBack ? -1 : 5);
        EXPECT_EQ(Info(), isBack ? L"[画像] 1.bmp ( 8×6 24bit )" : L"[画像] 4.bmp ( 16×6 24bit )");
    }
    // A step stops the show.
    bar_.Press(BarButton::kReversePlay);
    bar_.Press(BarButton::kStepBack);
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    EXPECT_EQ(Selected(), 4);
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(PlayerTest, DeleteDuringAShowTakesWhatIsSeen) {
    Values().general.slideShowTime = 10000;
    const List files = Bitmaps(3);
    const auto pressDelete = [&](BarButton motion) {
        bar_.SetFileList(files);
        bar_.Press(motion);
        Choose(commandAddToDeleteList);
        return RunUntil([&] { return bar_.listDelete().Count() > 0; }, 500);
    };
    EXPECT_FALSE(pressDelete(BarButton::kFastForward));
    EXPECT_EQ(Note(), L"早送りや巻き戻しを止めてから、もう一度押してください。");
    EXPECT_TRUE(pressDelete(BarButton::kPlay));
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
    bar_.Press(BarButton::kPlay);  // still one show
    const auto expectSeen = [&](bool isSeen) {
        EXPECT_TRUE(RunUntil([&] { return screens.count == isSeen; })) << isSeen;
    };
    EnableWindow(window_.Handle(), FALSE);
    expectSeen(false);
    EnableWindow(window_.Handle(), TRUE);
    expectSeen(true);
    ShowWindow(window_.Handle(), SW_MINIMIZE);
    expectSeen(false);
    ShowWindow(window_.Handle(), SW_RESTORE);
    expectSeen(true);
    window_.Unload();
    EXPECT_EQ(screens.count, 0);
}

TEST_F(PlayerTest, AShowGoesRoundWhereThatIsWanted) {
    Values().general.slideShowTime = 30;
    Values().general.showLoops = 1;
    const auto comesTo = [&](int file, int member) {
        return RunUntil(
            [&] { return Selected() == file && bar_.listArchiveFile().Selected() == member; });
    };
    bar_.SetFileList(Bitmaps(3));
    for (const BarButton motion : {BarButton::kPlay, BarButton::kReversePlay}) {
        bar_.Press(motion);
        for (int round = 0; round < 2; ++round) {
            EXPECT_TRUE(comesTo(2, -1));
            EXPECT_TRUE(comesTo(0, -1));
        }
        EXPECT_EQ(bar_.PlayMode(), motion);
    }
    EXPECT_EQ(Note(), L"");
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(StopsByItself());
    bar_.SetFileList(List{Archive(L"alone.tsa")});
    bar_.Press(BarButton::kPlay);
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(comesTo(0, 1));
        EXPECT_TRUE(comesTo(0, 0));
    }
}

TEST_F(PlayerTest, ARandomShowTakesEachFileOnceAndStepsLeadBack) {
    Values().general.slideShowTime = 0;
    Values().general.showRandom = 1;
    const List files = Bitmaps(12);
    bar_.SetFileList(files);
    List came{L"1.bmp — 1 / 12 — てっさりビューア"};
    {
        const MessageSpy titles(window_.Handle(), [&](UINT message, WPARAM, LPARAM text) {
            if (message == WM_SETTEXT) came.emplace_back(reinterpret_cast<const wchar_t*>(text));
        });
        bar_.Press(BarButton::kPlay);
        EXPECT_TRUE(StopsByItself());
    }
    EXPECT_EQ(Note(), L"スライドショーが一巡しました。");
    EXPECT_EQ(std::set<std::wstring>(came.begin(), came.end()).size(), files.size());
    EXPECT_EQ(came.size(), files.size());
    for (size_t i = came.size() - 1; i > 0; --i) {
        bar_.Press(BarButton::kStepBack);
        EXPECT_TRUE(came[i - 1].starts_with(FileNameOf(files[static_cast<size_t>(Selected())])));
    }
    EXPECT_EQ(Selected(), 0);
}

TEST_F(PlayerTest, SpacePausesWhatRuns) {
    const ScreenWatch screens;
    Values().general.slideShowTime = 50;
    Values().general.showLoops = 1;
    window_.Show();
    bar_.SetFileList(Bitmaps(3));
    bar_.Press(BarButton::kPlay);
    const auto goesOn = [&](DWORD patience) {
        const int selected = Selected();
        return RunUntil([&] { return Selected() != selected; }, patience);
    };
    for (int pause = 0; pause < 2; ++pause) {
        EXPECT_TRUE(goesOn(3000));
        Choose(commandReadOn);
        EXPECT_FALSE(goesOn(300));
        EXPECT_EQ(screens.count, 0) << "nobody may be watching";
        EXPECT_TRUE(IsEnabled(BarButton::kDeleteList));
        Choose(commandReadOn);
    }
    EXPECT_TRUE(goesOn(3000));
    Choose(commandReadOn);
    Choose(commandEscape);
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    const int selected = Selected();
    Choose(commandReadOn);
    EXPECT_NE(Selected(), selected == 2 ? -1 : selected) << "a step again";
    EXPECT_FALSE(bar_.IsPlaying() || bar_.IsPaused());
}

TEST_F(PlayerTest, DisplaySizesGoRound) {
    Values().fixSizeValue = 3;
    Values().general.sizeButton = kSizeButtonFixed;
    Values().general.enlargeSmall = 1;
    bar_.SetFileList(Bitmaps(1));
    const auto expect = [&](std::initializer_list<int> modes) {
        for (const int mode : modes) {
            bar_.Press(BarButton::kDisplaySize);
            EXPECT_EQ(Values().fixSizeValue, mode);
        }
    };
    expect({4, 0, 1});
    Values().general.sizeButton = kSizeButtonAll;
    expect({2, 3, 4, 5, 6, 0, 1});
    EXPECT_EQ(window_.Stage().Seen().Shown().cx, 640);  // at once, not with the next file
}

}  // namespace
}  // namespace tessary::test
