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
}

TEST_F(ScrollingTest, PaintsPictureAndBackground) {
    Load(320, 240);
    window_.Show();
    const PictureBox& box = window_.pictureView();
    // Compares the whole area with the picture at its place and the background around it.
    const auto expectOnScreen = [&](const char* what) {
        box.Refresh();
        const HDC context = GetDC(box.Handle());
        const POINT at = Position();
        const RECT picture{at.x, at.y, at.x + box.PictureSize().cx, at.y + box.PictureSize().cy};
        int wrong = 0;
        for (int y = 0; y < 240; y += 3) {
            for (int x = 0; x < 320; x += 3) {
                const COLORREF expected = PtInRect(&picture, {x, y})
                                              ? test::PixelAt(x - at.x, y - at.y)
                                              : GetSysColor(COLOR_APPWORKSPACE);
                wrong += GetPixel(context, x, y) != expected;
            }
        }
        ReleaseDC(box.Handle(), context);
        EXPECT_EQ(wrong, 0) << what;
    };
    ShowPicture(350, 200);
    expectOnScreen("wider");
    SendToView(WM_KEYDOWN, VK_RIGHT, 0);
    SendToView(WM_KEYDOWN, VK_RIGHT, 0);  // before the first move is painted
    expectOnScreen("moved twice");
    SendToView(WM_KEYDOWN, VK_LEFT, 0);
    expectOnScreen("moved back");
    window_.ClearPicture();
    expectOnScreen("emptied");
}

TEST_F(ScrollingTest, DraggingFollowsThePointerWithinTheEdges) {
    Load(320, 240);
    ShowPicture(400, 200);
    SendToView(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(200, 100));
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(-50, 130));  // outside, left of the view
    ExpectPosition(Position(), -80, 20);  // the height fits and stays in the middle
    SendToView(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(190, 100));  // counts from the start
    ExpectPosition(Position(), -10, 20);
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
    resize(10, 50);  // the lower edge of the picture would leave the view's
    ExpectPosition(Position(), 0, -10);
    resize(200, 160);  // everything fits
    ExpectPosition(Position(), 50, 50);
}

}  // namespace
}  // namespace tessary
