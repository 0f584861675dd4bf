#include "app/base/task_modal.h"

namespace tessary {

TaskModal::TaskModal(HWND except)
    : except_(except), active_(GetActiveWindow()), focused_(GetFocus()) {
    EnumThreadWindows(GetCurrentThreadId(), Visit, reinterpret_cast<LPARAM>(this));
}

TaskModal::~TaskModal() {
    for (const HWND window : disabled_) {
        if (IsWindow(window)) EnableWindow(window, TRUE);
    }
    // A disabled window cannot keep the focus, and the system may have passed it to anyone.
    if (!IsWindow(active_)) return;
    SetActiveWindow(active_);
    // A window that has stayed the active one is not asked where the keyboard goes.
    if (GetFocus() != nullptr || GetActiveWindow() != active_) return;
    SetFocus(active_);
    if (IsWindow(focused_) && IsWindowVisible(focused_) && IsWindowEnabled(focused_)) {
        SetFocus(focused_);
    }
}

BOOL CALLBACK TaskModal::Visit(HWND window, LPARAM self) {
    auto& modal = *reinterpret_cast<TaskModal*>(self);
    if (window != modal.except_ && IsWindowVisible(window) && IsWindowEnabled(window)) {
        EnableWindow(window, FALSE);
        modal.disabled_.push_back(window);
    }
    return TRUE;
}

}  // namespace tessary
