// What the picture box puts on the screen.
#include "ui/form/picture_box.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/src/ui/test_picture.h"
#include "ui/form/form.h"

namespace tessary {
namespace {

using test::MakePicture;

class BareForm final : public Form {
  public:
    BareForm() : Form({.className = L"TessaryBareForm", .caption = L"", .style = WS_POPUP}) {}
    ~BareForm() = default;
};

class PictureBoxTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(form_.Load());
        SetWindowPos(form_.Handle(), nullptr, 100, 100, 200, 150, SWP_NOZORDER);
        ASSERT_TRUE(box_.Create(form_.Handle(), {}));
        box_.SetBounds(0, 0, 200, 150);
        ShowWindow(form_.Handle(), SW_SHOWNOACTIVATE);
    }

    // Looks at every third pixel of the area.
    void Scan(const std::function<void(POINT at, COLORREF color)>& look) const {
        box_.Refresh();
        const HDC context = GetDC(box_.Handle());
        for (int y = 0; y < box_.AreaSize().cy; y += 3) {
            for (int x = 0; x < box_.AreaSize().cx; x += 3)
                look({x, y}, GetPixel(context, x, y));
        }
        ReleaseDC(box_.Handle(), context);
    }

    // Compares with what it must show: the picture at its place, the background around it.
    void ExpectOnScreen(const char* what) const {
        const POINT at = box_.PicturePosition();
        const RECT picture{at.x, at.y, at.x + box_.PictureSize().cx, at.y + box_.PictureSize().cy};
        int wrong = 0;
        Scan([&](POINT pixel, COLORREF color) {
            wrong +=
                color != (PtInRect(&picture, pixel) ? test::PixelAt(pixel.x - at.x, pixel.y - at.y)
                                                    : GetSysColor(COLOR_APPWORKSPACE));
        });
        EXPECT_EQ(wrong, 0) << what;
    }

    // Where it differs from the background; empty when it does not.
    RECT PaintedPart() const {
        RECT painted{};
        Scan([&](POINT at, COLORREF color) {
            const RECT pixel{at.x, at.y, at.x + 1, at.y + 1};
            if (color != GetSysColor(COLOR_APPWORKSPACE)) UnionRect(&painted, &painted, &pixel);
        });
        return painted;
    }

    BareForm form_;
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
    box_.MovePicture({-10, 0});
    box_.MovePicture({-50, -12});  // before the first move is painted
    ExpectOnScreen("moved twice");
    for (const POINT position : {POINT{-50, -90}, POINT{0, 0}}) {
        box_.MovePicture(position);
        ExpectOnScreen("moved");
    }

    IPicture* const shown = box_.Picture();
    shown->AddRef();
    box_.SetPicture(nullptr, {250, 240}, {});
    ExpectOnScreen("emptied");
    EXPECT_EQ(shown->Release(), 0u);  // the box has let go
}

TEST_F(PictureBoxTest, TellsWhyItIsEmpty) {
    box_.SetReason(std::wstring(60, L'絵') + L"\r\n壊れています。");
    for (const int width : {200, 120}) {
        box_.SetBounds(0, 0, width, 150);
        const RECT text = PaintedPart();
        EXPECT_GT(text.left, 0) << width;  // wrapped
        EXPECT_NEAR(text.left, width - text.right, 16) << width;
        EXPECT_NEAR(text.top, 150 - text.bottom, 8) << width;
    }
    box_.SetBounds(0, 0, 200, 150);
    box_.ShowNote(L"2 個");
    EXPECT_GT(PaintedPart().bottom, 130);
    box_.ShowNote({});
    box_.SetPicture(MakePicture(60, 40).Get(), {60, 40}, {70, 55});
    ExpectOnScreen("the picture alone");
    box_.SetPicture(nullptr, {}, {});
    EXPECT_EQ(PaintedPart().right, 0);
}

}  // namespace
}  // namespace tessary
