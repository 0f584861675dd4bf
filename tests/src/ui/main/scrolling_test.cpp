// Where the picture stands, and what moves it.
#include <tuple>

#include "tests/src/ui/main/main_window.h"
#include "ui/form/activity.h"
#include "ui/main/view_layout.h"

namespace tessary {
namespace {

class ScrollingTest : public test::MainWindowTest {
  protected:
    void ExpectPosition(int x, int y) const {
        EXPECT_EQ(Position().x, x);
        EXPECT_EQ(Position().y, y);
    }
};

TEST(ViewLayoutTest, PlacesPictures) {
    struct Case {
        ViewSize area;
        ViewSize picture;
        ViewPosition wanted;
        ViewPosition placed;
    };
    for (const Case& c : {
             Case{{100, 80}, {40, 20}, {-5, 7}, {30, 30}},         // fits: in the middle
             Case{{100, 80}, {100, 80}, {9, 9}, {0, 0}},           // fits exactly
             Case{{100, 80}, {140, 81}, {-20, -1}, {-20, -1}},     // larger, scrolled
             Case{{100, 80}, {140, 81}, {-900, -900}, {-40, -1}},  // beyond its end
             Case{{100, 80}, {140, 20}, {12, 12}, {0, 30}},        // beyond its start
             Case{{0, 0}, {140, 20}, {0, 0}, {0, 0}},              // no area at all
         }) {
        EXPECT_EQ(PlacePicture(c.area, c.picture, c.wanted), c.placed)
            << c.picture.width << " at " << c.wanted.x;
    }
    // A step is at least a pixel.
    EXPECT_EQ(StepPicture({15, 15}, {99, 99}, {-9, -9}, ScrollKey::kUp), (ViewPosition{-9, -8}));
}

TEST_F(ScrollingTest, ArrowKeysMoveTheSightOfThePicture) {
    Load(320, 240);
    ShowPicture(350, 280);
    for (const auto& [key, x, y] : {std::tuple{VK_RIGHT, -20, 0},
                                    {VK_DOWN, -20, -15},
                                    {VK_RIGHT, -30, -15},
                                    {VK_LEFT, -10, -15},
                                    {VK_UP, -10, 0}}) {
        SendToView(WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        ExpectPosition(x, y);
    }
    window_.pictureView_KeyDown(VK_LEFT, 0);  // the control bar's way
    ExpectPosition(0, 0);
    ShowPicture(100, 300);  // a new picture starts at its top
    ExpectPosition(110, 0);
}

TEST_F(ScrollingTest, DraggingFollowsThePointerWithinTheEdges) {
    Load(320, 240);
    ShowPicture(400, 200);
    const auto press = [&] { SendToView(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 100)); };
    const auto move = [&](int x, int y, WPARAM buttons = MK_LBUTTON) {
        SendToView(WM_MOUSEMOVE, buttons, MAKELPARAM(x, y));
    };
    press();
    EXPECT_EQ(GetCapture(), window_.pictureView().Handle());
    move(170, 130);
    ExpectPosition(-30, 20);  // the height fits and stays in the middle
    move(-50, 100);           // outside, left of the view
    ExpectPosition(-80, 20);
    move(190, 100);  // counts from the start
    ExpectPosition(-10, 20);
    SendToView(WM_LBUTTONUP, 0, MAKELPARAM(190, 100));
    EXPECT_EQ(GetCapture(), nullptr);
    move(100, 100, 0);
    ExpectPosition(-10, 20);
    press();
    ReleaseCapture();  // taken away, for instance by a message box
    move(100, 100);
    ExpectPosition(-10, 20);
}

TEST_F(ScrollingTest, LayoutFollowsTheWindowsSize) {
    Load(400, 240);
    ShowPicture(500, 300);
    SendToView(WM_KEYDOWN, VK_DOWN, 0);
    const RECT frame = FrameOf(window_.Handle());
    for (const auto& [wider, higher, x, y] :
         {std::tuple{10, 20, 0, -15},
          {10, 50, 0, -10},       // the lower edge of the picture would leave the view's
          {200, 160, 50, 50}}) {  // everything fits
        SetWindowPos(window_.Handle(), nullptr, 0, 0, frame.right - frame.left + wider,
                     frame.bottom - frame.top + higher, SWP_NOMOVE | SWP_NOZORDER);
        ExpectPosition(x, y);
    }

    const RECT view = FrameOf(window_.pictureView().Handle());
    const RECT status = FrameOf(window_.statusInformation().Handle());
    RECT client{};
    GetClientRect(window_.Handle(), &client);
    EXPECT_EQ(view.bottom, status.top);
    EXPECT_EQ(view.right - view.left, client.right);
    EXPECT_EQ(status.bottom - view.top, client.bottom);
}

TEST_F(ScrollingTest, KeysOfTheWindowAreThePicturesAndEnterSteps) {
    Load();
    window_.Show();
    SetFocus(window_.Handle());
    EXPECT_EQ(GetFocus(), window_.pictureView().Handle());
    SendToView(WM_KEYDOWN, VK_RETURN, 0);
    window_.pictureView_KeyDown(VK_RETURN, kShiftMask);
    const ReadUnderWay read;
    SendToView(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{5, 3}));
}

}  // namespace
}  // namespace tessary
