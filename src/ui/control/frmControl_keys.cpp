// The control bar's keys, and where they go.
//
// The program's keys work wherever the focus is. A part keeps what it has a use of its own for: the
// lists their up and down, a button the keys that press it, the delete list those about its entry.
#include <algorithm>

#include "ui/control/frmControl.h"
#include "ui/form/tab_stops.h"

namespace tessary {

bool frmControl::PassKeyOn(int keyCode, int shift) {
    if (keyCode != VK_LEFT && keyCode != VK_RIGHT) return false;
    window_.pictureView_KeyDown(keyCode, shift);
    return true;
}

bool frmControl::IsKeyOfProgram(const MSG& key) const {
    if (!IsOwn(key.hwnd)) return false;
    const bool onButton = coolBar_.HasFocus() || deletePanel_.IsButtonFocused();
    switch (key.wParam) {
        case VK_DELETE:
            return !deletePanel_.IsListFocused();
        case VK_RETURN:
            return (CurrentShiftState() & kShiftMask) != 0 ||
                   !(onButton || deletePanel_.IsListFocused());
        case VK_SPACE:
            return !onButton && !(listFileName_.HasFocus() && CurrentShiftState() == kCtrlMask);
        case VK_PRIOR:
        case VK_NEXT:
            return !placeSlider_.Window().HasFocus();
        case VK_HOME:
        case VK_END:
            return GetFocus() == Handle() || GetFocus() == coolBar_.Handle();
        default:
            return true;
    }
}

bool frmControl::TakesMessage(MSG& message) {
    if (!IsOwn(message.hwnd)) return false;
    if (window_.TakesSideButton(message)) return true;
    switch (message.message) {
        case WM_KEYDOWN:
            if (message.wParam != VK_TAB) return false;
            MoveFocus((CurrentShiftState() & kShiftMask) != 0);
            return true;
        case WM_SYSKEYDOWN:  // Alt+F4 closes the program
            if (message.wParam == VK_F4) message.hwnd = window_.Handle();
            return false;
        case WM_SYSCHAR:
            if (deletePanel_.PressMnemonic(static_cast<wchar_t>(message.wParam))) return true;
            message.hwnd = window_.Handle();  // its menu has the others
            return false;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            if (message.wParam == VK_MENU || message.wParam == VK_F10) {
                message.hwnd = window_.Handle();
            }
            return false;
        default:
            return false;
    }
}

// From part to part, and from either end to the main window.
void frmControl::MoveFocus(bool back) {
    const std::vector<HWND> stops = TabStops(Handle());
    const auto at = std::find(stops.begin(), stops.end(), GetFocus());
    if (at == stops.end() && !back && !stops.empty()) {
        ::SetFocus(stops.front());
    } else if (at == stops.end() || (back ? at == stops.begin() : at + 1 == stops.end())) {
        window_.TakeFocus();
    } else {
        ::SetFocus(back ? at[-1] : at[1]);
    }
}

void frmControl::TakeFocus(BarFocus focus) {
    if (!IsVisible() || !IsWindowEnabled(Handle())) return;
    const std::vector<HWND> stops = TabStops(Handle());
    if (focus == BarFocus::kFormer || stops.empty()) {
        ::SetFocus(Handle());  // hands it on to the part
    } else {
        ::SetFocus(focus == BarFocus::kFirst ? stops.front() : stops.back());
    }
}

// Gives the focus to a part of the bar, or where that cannot have it, to the files. Where they are
// out of sight too it stays with the window, which passes its keys to the picture: on a button of
// the toolbar they would mean something else than the user expects.
void frmControl::FocusPart(HWND part) {
    const std::vector<HWND> stops = TabStops(Handle());
    for (const HWND window : {part, listFileName_.Handle()}) {
        if (std::find(stops.begin(), stops.end(), window) == stops.end()) continue;
        ::SetFocus(window);
        return;
    }
}

}  // namespace tessary
