#include "ui/form/reparent.h"

namespace tessary {
namespace {

void ChangeStyle(HWND window, LONG_PTR off, LONG_PTR on) {
    const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
    SetWindowLongPtrW(window, GWL_STYLE, (style & ~off) | on);
}

void TellFrameChange(HWND window) {
    SetWindowPos(window, nullptr, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

}  // namespace

// The order of styles and parents is the system's wish. An owner that stays noted would keep the
// part in front of it, and take it along when it is minimised.
void MakePart(HWND popup, HWND parent) {
    const bool isVisible = (GetWindowLongPtrW(popup, GWL_STYLE) & WS_VISIBLE) != 0;
    if (isVisible) ShowWindow(popup, SW_HIDE);
    SetWindowLongPtrW(popup, GWLP_HWNDPARENT, 0);
    ChangeStyle(popup, WS_POPUP, WS_CHILD);
    SetParent(popup, parent);
    TellFrameChange(popup);
    SetWindowPos(popup, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    if (isVisible) ShowWindow(popup, SW_SHOWNA);
}

void MakePopup(HWND part, HWND owner) {
    RECT frame{};
    GetWindowRect(part, &frame);
    ShowWindow(part, SW_HIDE);
    SetParent(part, nullptr);
    ChangeStyle(part, WS_CHILD, WS_POPUP);
    SetWindowLongPtrW(part, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
    SetWindowPos(part, HWND_TOP, frame.left, frame.top, 0, 0,
                 SWP_NOSIZE | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

bool IsPart(HWND window) {
    return (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0;
}

}  // namespace tessary
