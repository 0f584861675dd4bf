// What every dialog gets from its base: the message font, anchors, resolution, exceptions.
#include "ui/form/dialog.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>

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
    const auto grow = [](HWND window, int wider, int higher) {
        const SIZE size = WindowSize(window);
        SetWindowPos(window, nullptr, 0, 0, size.cx + wider, size.cy + higher,
                     SWP_NOMOVE | SWP_NOZORDER);
    };
    SIZE grown{};
    DrivenDialog user({[&](HWND window) {
        const RECT list = AreaOf(window, openFolderList);
        const RECT button = AreaOf(window, IDOK);
        MINMAXINFO limits{};
        SendMessageW(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        EXPECT_EQ(limits.ptMinTrackSize.x, WindowSize(window).cx);
        grow(window, 60, 40);
        grown = WindowSize(window);
        EXPECT_EQ(AreaOf(window, openFolderList).left, list.left);
        EXPECT_EQ(AreaOf(window, openFolderList).right, list.right + 60);
        EXPECT_EQ(AreaOf(window, openFolderList).bottom, list.bottom + 40);
        EXPECT_EQ(AreaOf(window, IDOK).left, button.left + 60);
        EXPECT_EQ(AreaOf(window, IDOK).top, button.top + 40);
        Press(window, IDOK);  // throws: the dialog stays
        EXPECT_TRUE(IsWindow(window));
    }});
    EXPECT_EQ(dialog.ShowModal(nullptr), IDCANCEL);
    ASSERT_TRUE(user.IsDone());

    DrivenDialog again({[&](HWND window) {
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
    EXPECT_TRUE(again.IsDone());

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
    const auto letterOf = [](HWND control) {
        wchar_t text[200]{};
        GetWindowTextW(control, text, 200);
        const std::wstring caption = text;
        const size_t mark = caption.find(L'&');
        return mark == std::wstring::npos ? std::wstring() : caption.substr(mark + 1, 1);
    };
    for (const int resource : {dialogOpenFolder, dialogNewFolder, dialogDirList, dialogSaveOption,
                               dialogConvertAll, dialogOption, dialogAbout, dialogSPIAbout}) {
        const HWND dialog =
            CreateDialogParamW(ProgramInstance(), MAKEINTRESOURCEW(resource), nullptr, LeaveAll, 0);
        ASSERT_NE(dialog, nullptr) << resource;
        std::map<std::wstring, std::vector<int>> pagesOfLetter;  // 0: there always
        int page = 0;
        for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
             control = GetWindow(control, GW_HWNDNEXT)) {
            const int id = GetDlgCtrlID(control);
            if (BeginsPage(id)) page = id;
            if (id == IDOK || id == cmdRunConvert) page = 0;
            const std::wstring letter = letterOf(control);
            if (letter.empty()) continue;
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
