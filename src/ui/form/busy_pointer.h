// The hourglass during a long operation.
#pragma once

#include <windows.h>

namespace tessary {

// Shows the hourglass at once, also when the mouse rests, and asks the window below it for its own
// pointer in the end. Windows that let messages run meanwhile answer WM_SETCURSOR with the
// hourglass themselves.
class BusyPointer {
  public:
    BusyPointer() { SetCursor(LoadCursorW(nullptr, IDC_WAIT)); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    // Posted: what the window answers depends on what is going on, and that may end behind this.
    // Not by moving the pointer to where it is: in a remote session it is somewhere else by now.
    ~BusyPointer() {
        POINT at{};
        if (!GetCursorPos(&at)) return;
        const HWND below = WindowFromPoint(at);
        if (GetWindowThreadProcessId(below, nullptr) != GetCurrentThreadId()) return;
        const LRESULT part = SendMessageW(below, WM_NCHITTEST, 0, MAKELPARAM(at.x, at.y));
        PostMessageW(below, WM_SETCURSOR, reinterpret_cast<WPARAM>(below),
                     MAKELPARAM(part, WM_MOUSEMOVE));
    }
};

}  // namespace tessary
