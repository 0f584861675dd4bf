// The toolbar, with the control bar's buttons and images.
#include "ui/form/toolbar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "ui/control/toolbar_images.h"
#include "ui/control/toolbar_items.h"
#include "ui/form/form.h"
#include "ui/form/message_loop.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

class BarForm final : public Form {
  public:
    BarForm() : Form({.className = L"TessaryToolbarTest", .caption = L"", .style = WS_POPUP}) {}
};

class ToolbarTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(form_.Load());
        ASSERT_TRUE(toolbar_.Create(form_.Handle(), ControlBarItems(), ControlBarImages()));
        const SIZE size = toolbar_.SizeIn(0);
        toolbar_.SetBounds(0, 0, size.cx + 50, size.cy);
        toolbar_.OnButton([this](int index) { Note("press", index); });
        toolbar_.OnBackgroundPress([this] { Note("background", 0); });
        toolbar_.OnDropDown([this](int index, RECT place) {
            MapWindowPoints(nullptr, toolbar_.Handle(), reinterpret_cast<POINT*>(&place), 2);
            const RECT button = toolbar_.ButtonRectangle(index);
            Note(EqualRect(&place, &button) ? "menu" : "misplaced", index);
            // The system still works with the button that has this menu.
            Send(TB_PRESSBUTTON, static_cast<WPARAM>(index), TRUE);
            Send(WM_SYSCOLORCHANGE, 0);
            EXPECT_TRUE(Send(TB_ISBUTTONPRESSED, static_cast<WPARAM>(index)));
        });
    }
    void Note(const std::string& event, int index) {
        events_ += event + ' ' + std::to_string(index) + ", ";
    }
    LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam = 0) const {
        return SendMessageW(toolbar_.Handle(), message, wParam, lParam);
    }
    void Click(int x) const {
        Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, 8));
        Send(WM_LBUTTONUP, 0, MAKELPARAM(x, 8));
    }

    BarForm form_;
    Toolbar toolbar_;
    std::string events_;
};

TEST_F(ToolbarTest, EveryPressArrivesOnceAndWithTheRightButton) {
    toolbar_.EnableButton(7, false);
    for (const int index : {6, 9, 8, 7})  // 8 is a separator
        Click(toolbar_.ButtonRectangle(index).left + 4);
    Click(toolbar_.ButtonRectangle(12).right - 3);  // its arrow
    Click(toolbar_.SizeIn(0).cx + 20);
    EXPECT_EQ(events_, "press 6, press 9, background 0, menu 12, background 0, ");
    DoEvents();
    EXPECT_FALSE(Send(TB_ISBUTTONPRESSED, 12));  // all are made anew behind it
}

TEST_F(ToolbarTest, KeyboardSkipsWhatCannotBePressed) {
    toolbar_.EnableButton(1, false);
    for (const WPARAM key : {VK_HOME, VK_SPACE, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT,
                             VK_RIGHT, VK_F4})  // over the separator
        Send(WM_KEYDOWN, key);
    Send(WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
    for (const WPARAM key : {VK_END, VK_RIGHT, VK_RETURN, VK_F4})  // the last has no menu
        Send(WM_KEYDOWN, key);
    EXPECT_EQ(events_, "press 2, menu 9, menu 9, press 18, ");
}

TEST_F(ToolbarTest, RowsFitTheWidthAndBreakBetweenGroups) {
    const Metrics metrics(form_.Handle());
    for (const int width : {1000, 250, 120, 60, 1}) {
        toolbar_.EnableButton(11, width != 120);  // as it were in the middle of a load
        toolbar_.Wrap(metrics.Scale(width));
        const SIZE size = toolbar_.SizeIn(metrics.Scale(width));
        LONG right = 0;
        LONG bottom = 0;
        for (const ToolbarItem& item : ControlBarItems()) {
            if (item.kind == ToolbarItem::Kind::kSeparator) continue;
            const RECT button = toolbar_.ButtonRectangle(item.index);
            right = std::max(right, button.right);
            bottom = std::max(bottom, button.bottom);
        }
        EXPECT_EQ(right, size.cx) << width;
        EXPECT_EQ(bottom, size.cy) << width;
        EXPECT_TRUE(width <= 60 || size.cx <= metrics.Scale(width)) << width;
        EXPECT_EQ(toolbar_.ButtonRectangle(9).top == 0, width >= 250);
    }
    toolbar_.Wrap(0);
    EXPECT_EQ(toolbar_.ButtonRectangle(18).top, 0);
}

TEST_F(ToolbarTest, StateAndTipsSurviveNewMetricsAndTheBarStaysLow) {
    toolbar_.EnableButton(3, false);
    toolbar_.CheckButton(6, true);
    toolbar_.SetImage(15, static_cast<int>(ToolbarImage::kUnfold));
    toolbar_.ChangeMetrics();
    EXPECT_EQ(Send(TB_GETSTATE, 3), 0);
    EXPECT_EQ(Send(TB_GETSTATE, 6), TBSTATE_ENABLED | TBSTATE_CHECKED);
    EXPECT_EQ(Send(TB_GETBITMAP, 15), 17);
    const Metrics metrics(form_.Handle());
    EXPECT_LE(toolbar_.SizeIn(0).cy, metrics.Scale(26));
    EXPECT_EQ(toolbar_.ButtonRectangle(1).right, metrics.Scale(24));

    wchar_t text[8] = {};
    NMTBGETINFOTIPW tip{{toolbar_.Handle(), 0, static_cast<UINT>(TBN_GETINFOTIPW)}, text, 8, 9, 0};
    SendMessageW(form_.Handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&tip));
    EXPECT_STREQ(text, L"表示サイズ (");  // cut at the end of the buffer
    Send(TB_GETBUTTONTEXTW, 9, reinterpret_cast<LPARAM>(text));
    EXPECT_STREQ(text, L"表示サイズ");  // what a screen reader reads
}

}  // namespace
}  // namespace tessary
