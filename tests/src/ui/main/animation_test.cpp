// Animations in the main window: what moves, when it stands still, and what the user does to it.
#include <atomic>

#include "app/settings/modValue.h"
#include "picture/show/picture_text.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/src/ui/run_until.h"

namespace tessary {
namespace {

constexpr SIZE kSize{400, 300};
constexpr uint32_t kCount = 4;

// The red of a frame tells which one it is.
Picture Drawn(uint32_t index) {
    return test::PictureOf(kSize.cx, kSize.cy, [&](std::span<uint8_t> rows) {
        std::ranges::fill(rows, static_cast<uint8_t>(index * 10));
    });
}

class Drawer final : public FrameReader {
  public:
    explicit Drawer(std::atomic<int>& reads) : reads_(reads) {}
    std::optional<Frame> Read(const Animation&, uint32_t index,
                              const std::function<bool()>&) override {
        ++reads_;
        return Frame{Drawn(index), 30, index == 2 ? L"damage" : L""};
    }

  private:
    std::atomic<int>& reads_;
};

class AnimationTest : public test::MainWindowTest {
  protected:
    void SetUp() override {
        readers_ = [this] { return std::make_unique<Drawer>(reads_); };
        Load();
        ShowWindow(window_.Handle(), SW_SHOWNOACTIVATE);
    }
    void Show(uint32_t rounds = 0) {
        SetCurrentPicture(Drawn(0));
        window_.SetPicture(Drawn(0), {});
        window_.SetAnimation({.size = kSize, .count = kCount, .rounds = rounds});
    }
    static uint32_t Now() { return CurrentPicture().View().Row(0)[0] / 10; }
    bool Comes(uint32_t index) {
        return test::RunUntil([&] { return Now() == index; });
    }
    bool Moves() {
        const uint32_t now = Now();
        return test::RunUntil([&] { return Now() != now; }, 1000);
    }
    bool Stands() {
        const uint32_t now = Now();
        return !test::RunUntil([&] { return Now() != now; }, 300);
    }
    uint32_t OnScreen() const {
        window_.pictureView().Refresh();
        const HDC context = GetDC(window_.pictureView().Handle());
        const COLORREF pixel = GetPixel(context, 50, 50);
        ReleaseDC(window_.pictureView().Handle(), context);
        return GetRValue(pixel) / 10;
    }

    std::atomic<int> reads_ = 0;
};

TEST_F(AnimationTest, TakesThePlaceOfThePictureAndMovesNothingElse) {
    Values().fixSizeValue = kSizeModeOriginal;
    Show();
    Choose(commandZoomIn);
    SendToView(WM_KEYDOWN, VK_RIGHT, 0);
    const POINT at = Position();
    const SIZE shown = window_.Stage().Seen().Shown();
    for (const uint32_t index : {3, 1, 2}) {
        ASSERT_TRUE(Comes(index));
        const std::wstring text = L" " + std::to_wstring(index + 1) + L" / 4 コマ";
        EXPECT_NE(Panel(kScalePanel).find(text), std::wstring::npos) << "it is told at once";
        EXPECT_EQ(OnScreen(), index);
    }
    EXPECT_TRUE(Position().x == at.x && Position().y == at.y && at.x != 0);
    EXPECT_EQ(window_.Stage().Seen().Shown().cx, shown.cx);
    EXPECT_EQ(reads_, 4) << "a round costs nothing";
    // One of its frames is damaged, and so is what is shown from there on.
    EXPECT_EQ(CurrentPictureDamage(), L"damage");
    EXPECT_TRUE(Moves() && Moves() && Moves());
    EXPECT_EQ(CurrentPictureDamage(), L"damage");
    EXPECT_EQ(Panel(kShownFilePanel), kDamagedMark);
    // It stays turned as the user has turned it.
    Choose(commandTurnRight);
    EXPECT_EQ(CurrentPicture().Width(), kSize.cy);
    EXPECT_TRUE(Moves() && Moves());
    EXPECT_EQ(CurrentPicture().Width(), kSize.cy);
    Choose(commandMirror);
    Choose(commandTurnRight);
    EXPECT_TRUE(Moves());
    EXPECT_EQ(CurrentPicture().Width(), kSize.cx);
    // Another picture is what it is.
    ShowPicture(20, 10);
    EXPECT_TRUE(Stands());
    EXPECT_EQ(CurrentPicture().Width(), 20);
    EXPECT_EQ(Panel(kScalePanel).find(L"コマ"), std::wstring::npos);
}

TEST_F(AnimationTest, StandsStillWhileNobodySeesItOrSomethingElseIsUnderWay) {
    Show();
    ASSERT_TRUE(Moves());
    EnableWindow(window_.Handle(), FALSE);
    EXPECT_TRUE(Stands()) << "a dialog is about what is seen";
    EnableWindow(window_.Handle(), TRUE);
    EXPECT_TRUE(Moves());
    {
        const frmMain::Reading reading(window_, L"");
        EXPECT_TRUE(Stands());
    }
    EXPECT_TRUE(Moves());
    ShowWindow(window_.Handle(), SW_MINIMIZE);
    EXPECT_TRUE(Stands());
    ShowWindow(window_.Handle(), SW_RESTORE);
    EXPECT_TRUE(Moves());
    ShowWindow(window_.Handle(), SW_HIDE);
    EXPECT_TRUE(Stands());
}

TEST_F(AnimationTest, ThePersonPausesStepsAndPlaysOn) {
    Show(1);
    ASSERT_TRUE(Comes(kCount - 1));
    EXPECT_TRUE(test::RunUntil([&] { return window_.Frames().IsPaused(); }) && Stands())
        << "the last one stays";
    Choose(commandPauseFrames);
    EXPECT_TRUE(Comes(0) && Comes(1)) << "once more from the beginning";
    Choose(commandPauseFrames);
    EXPECT_TRUE(Stands());
    EXPECT_NE(Panel(kScalePanel).find(L"一時停止"), std::wstring::npos);
    Choose(commandFirstFrame);
    ASSERT_TRUE(Comes(0));
    Choose(commandFormerFrame);
    EXPECT_TRUE(Comes(3));
    Choose(commandNextFrame);
    Choose(commandNextFrame);
    EXPECT_TRUE(Comes(1) && Stands());
    EXPECT_EQ(OnScreen(), 1U);
    Choose(commandPauseFrames);
    EXPECT_TRUE(Comes(2));

    Choose(commandPlayAnimations);
    EXPECT_TRUE(Stands());
    Show();
    EXPECT_TRUE(Stands()) << "nor does the next one begin";
    Choose(commandPauseFrames);
    EXPECT_TRUE(Moves());
}

}  // namespace
}  // namespace tessary
