// Does in a modal dialog what its user would do.
#pragma once

#include <windows.h>

#include <deque>
#include <functional>
#include <utility>

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

inline void Press(HWND dialog, int button) {
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
}

inline void PressKey(HWND dialog, int control, WPARAM key) {
    SendMessageW(GetDlgItem(dialog, control), WM_KEYDOWN, key, 0);
}

}  // namespace tessary::test
