#include "ui/main/resting_pointer.h"

namespace tessary {

void RestingPointer::Start(HWND control) {
    control_ = control;
    hidden_ = false;
    patience_.Start(kPatience);
}

void RestingPointer::Stop() {
    control_ = nullptr;
    hidden_ = false;
    patience_.Stop();
}

void RestingPointer::Seen(POINT at) {
    if (at.x == at_.x && at.y == at_.y) return;
    at_ = at;
    Wake();
}

void RestingPointer::Wake() {
    if (control_ == nullptr) return;
    hidden_ = false;
    patience_.Start(kPatience);
}

// While a menu or a dialog is open the user looks for the pointer, however long he thinks.
bool RestingPointer::IsWanted() const {
    GUITHREADINFO state{};
    state.cbSize = sizeof(state);
    GetGUIThreadInfo(GetCurrentThreadId(), &state);
    constexpr DWORD kMenu = GUI_INMENUMODE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE;
    return (state.flags & kMenu) != 0 || !IsWindowEnabled(GetAncestor(control_, GA_ROOT));
}

// Asked again and again until the pointer may go.
void RestingPointer::Hide() {
    if (IsWanted()) return;
    patience_.Stop();
    hidden_ = true;
    POINT at{};
    if (GetCursorPos(&at) && WindowFromPoint(at) == control_) SetCursor(nullptr);
}

}  // namespace tessary
