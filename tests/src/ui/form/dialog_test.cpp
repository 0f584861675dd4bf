// What every dialog gets from its base: the message font, anchors, resolution, exceptions.
#include "ui/form/dialog.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

#include "res/resource.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "ui/form/metrics.h"

namespace tessary::test {
namespace {

class SizeableDialog final : public Dialog {
  public:
    SizeableDialog() : Dialog(dialogOpenFolder) {}
    bool fail = false;

  private:
    void Dialog_Load() override {
        Anchor(openFolderList, kAnchorWidth | kAnchorHeight);
        Anchor(IDOK, kAnchorRight | kAnchorBottom);
        if (fail) throw std::runtime_error("load");
    }
    void Dialog_OK() override { throw std::runtime_error("ok"); }
};

// How far a control is from its window's right and lower edge, and how wide it is.
using Place = std::array<LONG, 3>;

Place PlaceOf(HWND dialog, int control) {
    RECT window{};
    RECT area{};
    GetWindowRect(dialog, &window);
    GetWindowRect(GetDlgItem(dialog, control), &area);
    return {window.right - area.right, window.bottom - area.bottom, area.right - area.left};
}

TEST(DialogTest, ControlsKeepTheirDistanceToTheEdgesAtAnyResolution) {
    SizeableDialog dialog;
    MINMAXINFO limits{};
    Place wider{};
    DrivenDialog user(
        {[&](HWND window) {
             const Place button = PlaceOf(window, IDOK);
             const auto [right, below, width] = PlaceOf(window, openFolderList);
             wider = {right, below, width + 60};
             SendMessageW(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
             const auto& [smallestX, smallestY] = limits.ptMinTrackSize;  // as it is now
             SetWindowPos(window, nullptr, 0, 0, smallestX + 60, smallestY + 40,
                          SWP_NOMOVE | SWP_NOZORDER);
             EXPECT_EQ(PlaceOf(window, openFolderList), wider);
             EXPECT_EQ(PlaceOf(window, IDOK), button);
             Press(window, IDOK);  // throws: the dialog stays
             EXPECT_TRUE(IsWindow(window));
             Press(window, IDCANCEL);
         },
         [&](HWND window) {
             EXPECT_EQ(PlaceOf(window, openFolderList), wider) << "as it was left";
             const Place button = PlaceOf(window, IDOK);
             const int dpi = Metrics(window).Dpi();
             const RECT suggested{0, 0, limits.ptMinTrackSize.x * 2, limits.ptMinTrackSize.y * 2};
             SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi * 2, dpi * 2),
                          reinterpret_cast<LPARAM>(&suggested));
             const auto [right, below, width] = PlaceOf(window, IDOK);
             EXPECT_EQ(width, button[2] * 2);
             EXPECT_NEAR(right, button[0] * 2, 20);
             EXPECT_GT(right, 0);
         }});
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    EXPECT_TRUE(user.IsDone());
    dialog.fail = true;  // half-made dialogs are not shown
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    EXPECT_EQ(dialog.Handle(), nullptr);
}

TEST(DialogTest, ModelessOneEndsByEscAndOtherWindowsStayOutOfReachOfAModalOne) {
    SizeableDialog modeless;
    ASSERT_TRUE(modeless.Show(nullptr));
    SizeableDialog modal;
    DrivenDialog user({[&](HWND) { EXPECT_FALSE(IsWindowEnabled(modeless.Handle())); }});
    modal.ShowModal(nullptr);
    EXPECT_TRUE(IsWindowEnabled(modeless.Handle()));
    PostMessageW(GetDlgItem(modeless.Handle(), openFolderPath), WM_KEYDOWN, VK_ESCAPE, 0);
    DoEvents();
    EXPECT_EQ(modeless.Handle(), nullptr);
}

}  // namespace
}  // namespace tessary::test
