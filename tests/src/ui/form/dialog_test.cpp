// What every dialog gets from its base: the message font, anchors, resolution, exceptions.
#include "ui/form/dialog.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "res/resource.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "ui/form/metrics.h"
#include "ui/form/window.h"

namespace tessary::test {
namespace {

class SizeableDialog final : public Dialog {
  public:
    SizeableDialog() : Dialog(dialogOpenFolder) {}
    ~SizeableDialog() = default;
    bool fail = false;

  private:
    void Dialog_Load() override {
        Anchor(openFolderList, kAnchorWidth | kAnchorHeight);
        Anchor(IDOK, kAnchorRight | kAnchorBottom);
        if (fail) throw std::runtime_error("load");
    }
    void Dialog_OK() override { throw std::runtime_error("ok"); }
};

RECT AreaOf(HWND dialog, int control) {
    RECT area{};
    GetWindowRect(GetDlgItem(dialog, control), &area);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
    return area;
}

SIZE WindowSize(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return {area.right - area.left, area.bottom - area.top};
}

TEST(DialogTest, ControlsKeepTheirDistanceToTheEdgesAtAnyResolution) {
    SizeableDialog dialog;
    SIZE grown{};
    DrivenDialog user(
        {[&](HWND window) {
             const RECT list = AreaOf(window, openFolderList);
             const RECT button = AreaOf(window, IDOK);
             const SIZE size = WindowSize(window);
             MINMAXINFO limits{};
             SendMessageW(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
             EXPECT_EQ(limits.ptMinTrackSize.x, size.cx);
             grown = {size.cx + 60, size.cy + 40};
             SetWindowPos(window, nullptr, 0, 0, grown.cx, grown.cy, SWP_NOMOVE | SWP_NOZORDER);
             const RECT wider = AreaOf(window, openFolderList);
             EXPECT_EQ(wider.left, list.left);
             EXPECT_EQ(wider.right, list.right + 60);
             EXPECT_EQ(wider.bottom, list.bottom + 40);
             EXPECT_EQ(AreaOf(window, IDOK).left, button.left + 60);
             EXPECT_EQ(AreaOf(window, IDOK).top, button.top + 40);
             Press(window, IDOK);  // throws: the dialog stays
             EXPECT_TRUE(IsWindow(window));
             Press(window, IDCANCEL);
         },
         [&](HWND window) {
             EXPECT_EQ(WindowSize(window).cx, grown.cx);  // as it was left
             const RECT button = AreaOf(window, IDOK);
             const int dpi = Metrics(window).Dpi();
             const RECT suggested{0, 0, grown.cx * 2, grown.cy * 2};
             SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi * 2, dpi * 2),
                          reinterpret_cast<LPARAM>(&suggested));
             const RECT doubled = AreaOf(window, IDOK);
             EXPECT_EQ(doubled.right - doubled.left, (button.right - button.left) * 2);
             RECT client{};
             GetClientRect(window, &client);
             EXPECT_LE(doubled.right, client.right);
             EXPECT_GT(doubled.right, client.right - (grown.cx - button.right) * 2 - 40);
         }});
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    EXPECT_TRUE(user.IsDone());
    dialog.fail = true;  // half-made dialogs are not shown
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    EXPECT_EQ(dialog.Handle(), nullptr);
}

bool BeginsPage(int id) {
    return (id >= optionPage_0 && id <= optionPage_3) || id == pictureOptionPanel_0 ||
           id == pictureOptionPanel_1 || id == pictureOptionPanel_2 || id == labelConvertFiles ||
           id == frameShowConvertStatus;
}

INT_PTR CALLBACK LeaveAll(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

// Of pages in one place only one is there at a time; the buttons behind them are there with each.
TEST(DialogTest, MnemonicsOfAPageAreUnique) {
    for (const int resource : {dialogOpenFolder, dialogNewFolder, dialogDirList, dialogSaveOption,
                               dialogConvertAll, dialogOption, dialogAbout, dialogSPIAbout}) {
        const HWND dialog =
            CreateDialogParamW(ProgramInstance(), MAKEINTRESOURCEW(resource), nullptr, LeaveAll, 0);
        ASSERT_NE(dialog, nullptr) << resource;
        std::map<wchar_t, std::vector<int>> pagesOfLetter;  // 0: there always
        int page = 0;
        for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
             control = GetWindow(control, GW_HWNDNEXT)) {
            const int id = GetDlgCtrlID(control);
            if (BeginsPage(id)) page = id;
            if (id == IDOK || id == cmdRunConvert) page = 0;
            const std::wstring caption = TextOf(control);
            const size_t mark = caption.find(L'&');
            if (mark == std::wstring::npos) continue;
            const wchar_t letter = caption[mark + 1];
            for (const int other : pagesOfLetter[letter])
                EXPECT_TRUE(other != page && other != 0 && page != 0) << resource << ' ' << id;
            pagesOfLetter[letter].push_back(page);
        }
        DestroyWindow(dialog);
    }
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
