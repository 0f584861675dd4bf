// The toolbar, with the control bar's buttons and images.
#include "ui/form/toolbar.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

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
    ~BarForm() = default;

    Toolbar toolbar;
    std::vector<std::string> events;

    void Mouse(POINT at) {
        SendMessageW(toolbar.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(toolbar.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    }
    bool IsPressed(int index) const {
        return SendMessageW(toolbar.Handle(), TB_ISBUTTONPRESSED, static_cast<WPARAM>(index), 0);
    }
    void Key(int key) { SendMessageW(toolbar.Handle(), WM_KEYDOWN, static_cast<WPARAM>(key), 0); }

  private:
    void Form_Load() override {
        ASSERT_TRUE(toolbar.Create(Handle(), ControlBarItems(), ControlBarImages()));
        const SIZE size = toolbar.PreferredSize();
        toolbar.SetBounds(0, 0, size.cx + 50, size.cy);
        toolbar.OnButton([this](int index) { events.push_back("press " + std::to_string(index)); });
        toolbar.OnDropDown([this](int index, RECT place) {
            MapWindowPoints(nullptr, toolbar.Handle(), reinterpret_cast<POINT*>(&place), 2);
            const RECT button = toolbar.ButtonRectangle(index);
            const bool placed = EqualRect(&place, &button);
            events.push_back((placed ? "menu " : "misplaced ") + std::to_string(index));
            // The system still works with the button that has this menu.
            SendMessageW(toolbar.Handle(), TB_PRESSBUTTON, static_cast<WPARAM>(index), TRUE);
            SendMessageW(toolbar.Handle(), WM_SYSCOLORCHANGE, 0, 0);
            EXPECT_TRUE(IsPressed(index));
        });
        toolbar.OnBackgroundPress([this] { events.emplace_back("background"); });
    }
};

class ToolbarTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(form_.Load()); }
    BarForm form_;
    Toolbar& toolbar_ = form_.toolbar;
};

TEST_F(ToolbarTest, EveryPressArrivesOnceAndWithTheRightButton) {
    toolbar_.EnableButton(7, false);
    for (const int index : {6, 9, 8, 7}) {  // 8 is a separator
        const RECT button = toolbar_.ButtonRectangle(index);
        form_.Mouse({button.left + 4, button.top + 8});
    }
    form_.Mouse({toolbar_.ButtonRectangle(12).right - 3, 8});  // its arrow
    form_.Mouse({toolbar_.PreferredSize().cx + 20, 5});
    EXPECT_EQ(form_.events, (std::vector<std::string>{"press 6", "press 9", "background", "menu 12",
                                                      "background"}));
    DoEvents();
    EXPECT_FALSE(form_.IsPressed(12));  // all are made anew behind it
}

TEST_F(ToolbarTest, KeyboardSkipsWhatCannotBePressed) {
    toolbar_.EnableButton(1, false);
    for (const int key : {VK_HOME, VK_SPACE, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT, VK_RIGHT,
                          VK_RIGHT, VK_F4})  // over the separator
        form_.Key(key);
    SendMessageW(toolbar_.Handle(), WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
    for (const int key : {VK_END, VK_RIGHT, VK_RETURN, VK_F4})  // the last has no menu
        form_.Key(key);
    EXPECT_EQ(form_.events, (std::vector<std::string>{"press 2", "menu 9", "menu 9", "press 16"}));
}

TEST_F(ToolbarTest, StateAndTipsSurviveNewMetricsAndTheBarStaysLow) {
    toolbar_.EnableButton(3, false);
    toolbar_.CheckButton(6, true);
    toolbar_.SetImage(15, static_cast<int>(ToolbarImage::kUnfold));
    toolbar_.ChangeMetrics();
    const auto send = [&](UINT message, WPARAM button, LPARAM text = 0) {
        return SendMessageW(toolbar_.Handle(), message, button, text);
    };
    EXPECT_EQ(send(TB_GETSTATE, 3), 0);
    EXPECT_EQ(send(TB_GETSTATE, 6), TBSTATE_ENABLED | TBSTATE_CHECKED);
    EXPECT_EQ(send(TB_GETBITMAP, 15), 17);
    const Metrics metrics(form_.Handle());
    EXPECT_LE(toolbar_.PreferredSize().cy, metrics.Scale(26));
    EXPECT_EQ(toolbar_.ButtonRectangle(1).right, metrics.Scale(24));

    wchar_t text[8] = {};
    NMTBGETINFOTIPW tip{};
    tip.hdr = {toolbar_.Handle(), 0, static_cast<UINT>(TBN_GETINFOTIPW)};
    tip.pszText = text;
    tip.cchTextMax = 8;
    tip.iItem = 9;
    SendMessageW(form_.Handle(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&tip));
    EXPECT_STREQ(text, L"表示サイズ (");  // cut at the end of the buffer
    send(TB_GETBUTTONTEXTW, 9, reinterpret_cast<LPARAM>(text));
    EXPECT_STREQ(text, L"表示サイズ");  // what a screen reader reads
}

TEST(ToolbarImagesTest, DifferAndAreSharpAtEveryResolution) {
    for (const int size : {16, 20, 24, 28, 32}) {
        std::set<std::vector<uint32_t>> different;
        for (int number = 1; number <= kToolbarImageCount; ++number) {
            const ArgbImage image = ControlBarImages().draw(number, {size, false});
            different.insert(image.pixels);
            different.insert(Greyed(image).pixels);
        }
        EXPECT_EQ(different.size(), 2U * kToolbarImageCount) << size;

        // A square has no half-covered pixel and lies in the middle.
        const ArgbImage stop = DrawToolbarImage(ToolbarImage::kStop, {size, false});
        const std::vector<uint32_t> turned(stop.pixels.rbegin(), stop.pixels.rend());
        EXPECT_EQ(stop.pixels, turned) << size;
        for (const uint32_t pixel : stop.pixels)
            EXPECT_TRUE(pixel >> 24 == 0 || pixel >> 24 == 255) << size;
    }
}

// A slanted edge is smoothed, and its colour is not darkened by what is missing of it.
TEST(ToolbarImagesTest, CoversPartsOfPixels) {
    VectorCanvas canvas(16);
    const ArgbColor color{200, 100, 50};
    canvas.FillPolygon({{0, 0}, {16, 0}, {0, 16}}, color);
    canvas.FillRectangle({0, 0}, {2, 2}, kHole);
    canvas.DrawFrame({0, 0}, {3, 3}, 1, color);
    const ArgbImage image = canvas.Image();
    EXPECT_EQ(image.pixels[15], 0x80C86432U);
    EXPECT_EQ(image.pixels[17], 0U);
    EXPECT_EQ(image.pixels[34], 0xFFC86432U);
    EXPECT_EQ(image.pixels[255], 0U);
}

}  // namespace
}  // namespace tessary
