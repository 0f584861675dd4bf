// Does in a modal dialog what its user would do.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <windowsx.h>

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ui/form/timer.h"

namespace tessary::test {

// The steps run one after the other, each as soon as a dialog of this thread can be used and the
// messages before it are done. A dialog that is still open when the steps are over, or a long time
// is, is cancelled.
class DrivenDialog {
  public:
    using Step = std::function<void(HWND dialog)>;

    // A dialog that waits for something with `waits` disabled is left in peace.
    explicit DrivenDialog(std::deque<Step> steps, int waits = 0)
        : steps_(std::move(steps)), waits_(waits) {
        timer_.Start(10);
    }

    // Whether all steps have run.
    bool IsDone() const { return steps_.empty(); }

  private:
    static BOOL CALLBACK FindDialog(HWND window, LPARAM found) {
        constexpr ATOM kDialogClass = 32770;
        if (GetClassLongPtrW(window, GCW_ATOM) != kDialogClass || !IsWindowVisible(window) ||
            !IsWindowEnabled(window)) {
            return TRUE;
        }
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }

    void Tick() {
        HWND dialog = nullptr;
        EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
        if (dialog == nullptr) return;
        if (GetTickCount() - start_ > 20000 || steps_.empty()) {
            EndDialog(dialog, IDCANCEL);
            return;
        }
        const HWND waits = GetDlgItem(dialog, waits_);
        if (waits != nullptr && !IsWindowEnabled(waits)) return;
        const Step step = steps_.front();
        steps_.pop_front();
        // Tests that run beside this one come to the foreground.
        if (GetFocus() == nullptr) SetForegroundWindow(dialog);
        step(dialog);
    }

    std::deque<Step> steps_;
    int waits_;  // a control
    DWORD start_ = GetTickCount();
    Timer timer_{[this] { Tick(); }};
};

// What the user does to a control of the dialog.
inline void Press(HWND dialog, int button) {
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
}

// As soon as messages are let through.
inline void PressLater(HWND dialog, int button) {
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
}

inline void Click(HWND dialog, int button) {
    SendDlgItemMessageW(dialog, button, BM_CLICK, 0, 0);
}

inline void PressKey(HWND dialog, int control, WPARAM key) {
    SendDlgItemMessageW(dialog, control, WM_KEYDOWN, key, 0);
}

inline void Type(HWND dialog, int field, const std::wstring& text) {
    SetDlgItemTextW(dialog, field, text.c_str());
}

inline void Choose(HWND dialog, int comboBox, int index) {
    SendDlgItemMessageW(dialog, comboBox, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(comboBox, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, comboBox)));
}

inline void SelectRow(HWND dialog, int listView, int row) {
    ListView_SetItemState(GetDlgItem(dialog, listView), row, LVIS_SELECTED | LVIS_FOCUSED,
                          LVIS_SELECTED | LVIS_FOCUSED);
}

// What he sees of it.
inline std::wstring TextOf(HWND window) {
    std::wstring text(20000, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

inline std::wstring TextOf(HWND dialog, int control) {
    return TextOf(GetDlgItem(dialog, control));
}

inline bool IsUsable(HWND dialog, int control) {
    const HWND window = GetDlgItem(dialog, control);
    return IsWindowVisible(window) && IsWindowEnabled(window);
}

inline bool HasFocus(HWND dialog, int control) {
    return GetFocus() == GetDlgItem(dialog, control);
}

inline std::vector<std::wstring> Items(HWND listBox) {
    std::vector<std::wstring> items(static_cast<size_t>(ListBox_GetCount(listBox)));
    for (int index = 0; std::wstring & item : items) {
        item.resize(static_cast<size_t>(ListBox_GetTextLen(listBox, index)));
        ListBox_GetText(listBox, index++, item.data());
    }
    return items;
}

inline std::vector<std::wstring> Items(HWND dialog, int listBox) {
    return Items(GetDlgItem(dialog, listBox));
}

// The texts of a column of a list view, counted from 0.
inline std::vector<std::wstring> Column(HWND dialog, int listView, int column) {
    const HWND list = GetDlgItem(dialog, listView);
    std::vector<std::wstring> cells;
    for (int row = 0; row < ListView_GetItemCount(list); ++row) {
        wchar_t text[260]{};
        ListView_GetItemText(list, row, column, text, 260);
        cells.emplace_back(text);
    }
    return cells;
}

}  // namespace tessary::test
