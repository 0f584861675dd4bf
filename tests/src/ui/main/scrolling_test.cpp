// Where the picture stands, and what moves it.
#include <tuple>

#include "picture/view/view_layout.h"
#include "tests/src/ui/main/main_window.h"
#include "ui/form/activity.h"

namespace tessary {
namespace {

class ScrollingTest : public test::MainWindowTest {
  protected:
    // Shows a picture in an area of that size, beside its scroll bars.
    void ShowIn(int width, int height, int pictureWidth, int pictureHeight) {
        Load(width, height);
        ShowPicture(pictureWidth, pictureHeight);
        SizeView(width, height);
    }
    void ExpectPosition(int x, int y) const {
        EXPECT_EQ(Position().x, x);
        EXPECT_EQ(Position().y, y);
    }
};

TEST_F(ScrollingTest, ArrowKeysMoveTheSightOfThePicture) {
    ShowIn(320, 240, 350, 280);
    for (const auto& [key, x, y] : {std::tuple{VK_RIGHT, -20, 0},
                                    {VK_DOWN, -20, -15},
                                    {VK_RIGHT, -30, -15},
                                    {VK_LEFT, -10, -15},
                                    {VK_UP, -10, 0}}) {
        SendToView(WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        ExpectPosition(x, y);
    }
    // A step is at least a pixel.
    EXPECT_EQ(StepPicture({15, 15}, {99, 99}, {-9, -9}, ScrollKey::kUp), (ViewPosition{-9, -8}));
    ShowPicture(100, 300);  // a new picture starts at its top
    ExpectPosition(110, 0);
}

TEST_F(ScrollingTest, DraggingFollowsThePointerWithinTheEdges) {
    ShowIn(320, 240, 400, 200);
    const auto send = [&](UINT message, int x, int y, WPARAM buttons = MK_LBUTTON) {
        SendToView(message, buttons, MAKELPARAM(x, y));
    };
    send(WM_LBUTTONDOWN, 200, 100);
    for (const auto& [toX, toY, x, y] : {std::tuple{170, 130, -30, 20},  // the height fits
                                         {-50, 100, -80, 20},            // left of the view
                                         {190, 100, -10, 20}}) {         // counts from the start
        send(WM_MOUSEMOVE, toX, toY);
        ExpectPosition(x, y);
    }
    send(WM_LBUTTONUP, 190, 100, 0);
    EXPECT_EQ(GetCapture(), nullptr);
    send(WM_MOUSEMOVE, 100, 100, 0);
    send(WM_LBUTTONDOWN, 200, 100);
    ReleaseCapture();  // taken away, for instance by a message box
    send(WM_MOUSEMOVE, 100, 100);
    ExpectPosition(-10, 20);
}

TEST_F(ScrollingTest, LayoutFollowsTheWindowsSize) {
    ShowIn(400, 240, 500, 300);
    SendToView(WM_KEYDOWN, VK_DOWN, 0);
    for (const auto& [width, height, x, y] :
         {std::tuple{410, 260, 0, -15},
          {410, 290, 0, -10},     // the lower edge of the picture would leave the view's
          {600, 400, 50, 50}}) {  // everything fits
        SizeView(width, height);
        ExpectPosition(x, y);
    }
    const RECT view = FrameOf(window_.pictureView().Handle());
    const RECT status = FrameOf(window_.statusInformation().Handle());
    RECT client{};
    GetClientRect(window_.Handle(), &client);
    EXPECT_EQ(view.bottom, status.top);
    EXPECT_EQ(status.bottom - view.top, client.bottom);
}

TEST_F(ScrollingTest, ATurnedPictureIsTheOneToBeSaved) {
    Load(320, 240);
    ShowPicture(30, 20);
    Choose(commandTurnRight);
    EXPECT_EQ(window_.Stage().Seen().Shown().cx, 20);
    EXPECT_EQ(CurrentPicture().View().Row(0)[1], 19);  // green was y
    Choose(commandMirror);
    EXPECT_EQ(CurrentPicture().View().Row(0)[1], 0);
    ChooseDuringARead(commandTurnLeft);  // another one is coming
    EXPECT_EQ(CurrentPicture().Width(), 20);
    ShowPicture(30, 20);
    EXPECT_EQ(window_.Stage().Seen().Shown().cx, 30);
}

TEST_F(ScrollingTest, KeysOfTheWindowAreThePicturesAndEnterSteps) {
    Load();
    window_.Show();
    SetFocus(window_.Handle());
    EXPECT_EQ(GetFocus(), window_.pictureView().Handle());
    SendToView(WM_KEYDOWN, VK_RETURN, 0);
    window_.pictureView_KeyDown(VK_RETURN, kShiftMask);
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{5, 3}));
}

}  // namespace
}  // namespace tessary
