// What the picture box puts on the screen.
#include "ui/form/picture_box.h"

#include <gtest/gtest.h>

#include "tests/src/ui/test_picture.h"

namespace tessary {
namespace {

using test::MakePicture;

class PictureBoxTest : public testing::Test {
  protected:
    PictureBoxTest() {
        EXPECT_TRUE(box_.Create(parent_, {}));
        box_.SetBounds(0, 0, 200, 150);
        ShowWindow(parent_, SW_SHOWNOACTIVATE);
    }
    ~PictureBoxTest() override { DestroyWindow(parent_); }

    // Looks at every third pixel of the area: of what the picture is to show there, else of the
    // background.
    void ExpectOnScreen(const char* what) const {
        const POINT at = box_.PicturePosition();
        const RECT picture{at.x, at.y, at.x + box_.PictureSize().cx, at.y + box_.PictureSize().cy};
        int wrong = 0;
        box_.Refresh();
        const HDC context = GetDC(box_.Handle());
        for (int y = 0; y < box_.AreaSize().cy; y += 3) {
            for (int x = 0; x < box_.AreaSize().cx; x += 3) {
                const COLORREF expected = PtInRect(&picture, {x, y})
                                              ? test::PixelAt(x - at.x, y - at.y)
                                              : GetSysColor(COLOR_APPWORKSPACE);
                wrong += GetPixel(context, x, y) != expected;
            }
        }
        ReleaseDC(box_.Handle(), context);
        EXPECT_EQ(wrong, 0) << what;
    }

    HWND parent_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 100, 100, 200, 150, nullptr,
                                   nullptr, nullptr, nullptr);
    PictureBox box_;
};

TEST_F(PictureBoxTest, PaintsPictureAndBackground) {
    ExpectOnScreen("empty");
    box_.SetPicture(MakePicture(60, 40).Get(), {60, 40}, {70, 55});
    ExpectOnScreen("small");
    box_.SetPicture(MakePicture(250, 240).Get(), {250, 240}, {-20, -30});
    ExpectOnScreen("large");
    box_.SetBounds(0, 0, 120, 150);
    box_.SetBounds(0, 0, 200, 150);
    ExpectOnScreen("uncovered again");
    box_.MovePicture({-10, 0});  // before the next move nothing is painted
    for (const POINT position : {POINT{-50, -12}, POINT{-50, -90}, POINT{0, 0}}) {
        box_.MovePicture(position);
        ExpectOnScreen("moved");
    }

    IPicture* const shown = box_.Picture();
    shown->AddRef();
    box_.SetPicture(nullptr, {250, 240}, {});
    ExpectOnScreen("emptied");
    EXPECT_EQ(shown->Release(), 0u);  // the box has let go
}

}  // namespace
}  // namespace tessary
