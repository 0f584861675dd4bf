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
    if (control_ == nullptr || (at.x == at_.x && at.y == at_.y)) return;
    at_ = at;
    hidden_ = false;
    patience_.Start(kPatience);
}

void RestingPointer::Hide() {
    patience_.Stop();
    hidden_ = true;
    POINT at{};
    if (GetCursorPos(&at) && WindowFromPoint(at) == control_) SetCursor(nullptr);
}

}  // namespace tessary
