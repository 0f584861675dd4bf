// Where the picture stands, and what moves it.
#include "tests/src/ui/main/main_window.h"
#include "ui/main/view_layout.h"

namespace tessary {
namespace {

using ScrollingTest = test::MainWindowTest;

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

void ExpectPosition(POINT position, int x, int y) {
    EXPECT_EQ(position.x, x);
    EXPECT_EQ(position.y, y);
}

TEST_F(ScrollingTest, ArrowKeysStopAtTheEdges) {
    Load(320, 240);
    ShowPicture(350, 280);
    ExpectPosition(Position(), 0, 0);
    SendToView(WM_KEYDOWN, VK_RIGHT, 0);
    SendToView(WM_KEYDOWN, VK_DOWN, 0);
    ExpectPosition(Position(), -20, -15);  // a sixteenth of the view
    for (int press = 0; press < 5; ++press) {
        SendToView(WM_KEYDOWN, VK_RIGHT, 0);
        SendToView(WM_KEYDOWN, VK_DOWN, 0);
    }
    ExpectPosition(Position(), -30, -40);
    SendToView(WM_KEYDOWN, VK_LEFT, 0);
    SendToView(WM_KEYDOWN, VK_UP, 0);
    ExpectPosition(Position(), -10, -25);
    window_.pictureView_KeyDown(VK_LEFT, 0);  // the control bar's way
    ExpectPosition(Position(), 0, -25);

    ShowPicture(100, 300);  // fits along one axis: a new picture starts at its top
    SendToView(WM_KEYDOWN, VK_RIGHT, 0);
    SendToView(WM_KEYDOWN, VK_DOWN, 0);
    ExpectPosition(Position(), 110, -15);
}

TEST_F(ScrollingTest, DraggingFollowsThePointerWithinTheEdges) {
    Load(320, 240);
    ShowPicture(400, 200);
    SendToView(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 100));
    EXPECT_EQ(GetCapture(), window_.pictureView().Handle());
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(170, 130));
    ExpectPosition(Position(), -30, 20);  // the height fits and stays in the middle
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(-50, 100));  // outside, left of the view
    ExpectPosition(Position(), -80, 20);
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(190, 100));  // counts from the start
    ExpectPosition(Position(), -10, 20);
    SendToView(WM_LBUTTONUP, 0, MAKELPARAM(190, 100));
    EXPECT_EQ(GetCapture(), nullptr);
    SendToView(WM_MOUSEMOVE, 0, MAKELPARAM(100, 100));
    ExpectPosition(Position(), -10, 20);

    SendToView(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 100));
    ReleaseCapture();  // taken away, for instance by a message box
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(100, 100));
    ExpectPosition(Position(), -10, 20);
}

TEST_F(ScrollingTest, LayoutFollowsTheWindowsSize) {
    Load(400, 240);
    ShowPicture(500, 300);
    SendToView(WM_KEYDOWN, VK_DOWN, 0);
    RECT frame{};
    GetWindowRect(window_.Handle(), &frame);
    const auto resize = [&](int wider, int higher) {
        SetWindowPos(window_.Handle(), nullptr, 0, 0, frame.right - frame.left + wider,
                     frame.bottom - frame.top + higher, SWP_NOMOVE | SWP_NOZORDER);
    };
    resize(10, 20);
    ExpectPosition(Position(), 0, -15);
    resize(10, 50);  // the lower edge of the picture would leave the view's
    ExpectPosition(Position(), 0, -10);
    resize(200, 160);  // everything fits
    ExpectPosition(Position(), 50, 50);

    RECT view{};
    RECT status{};
    RECT client{};
    GetWindowRect(window_.pictureView().Handle(), &view);
    GetWindowRect(window_.statusInformation().Handle(), &status);
    GetClientRect(window_.Handle(), &client);
    EXPECT_EQ(view.bottom, status.top);
    EXPECT_EQ(view.right - view.left, client.right);
    EXPECT_EQ(status.bottom - view.top, client.bottom);
}

TEST_F(ScrollingTest, KeysOfTheWindowAreThePictures) {
    Load();
    window_.Show();
    SetFocus(window_.Handle());
    EXPECT_EQ(GetFocus(), window_.pictureView().Handle());
}

TEST_F(ScrollingTest, EnterStepsThroughTheFiles) {
    window_.SetControlBar(controlBar_);
    Load();
    SendToView(WM_KEYDOWN, VK_RETURN, 0);
    window_.pictureView_KeyDown(VK_RETURN, kShiftMask);
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{5, 3}));
    Values().readsUnderWay = 1;
    SendToView(WM_KEYDOWN, VK_RETURN, 0);
    EXPECT_EQ(controlBar_.pressed.size(), 2u);
}

}  // namespace
}  // namespace tessary
