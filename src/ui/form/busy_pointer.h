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
    ~BusyPointer() {
        POINT at{};
        if (GetCursorPos(&at)) SetCursorPos(at.x, at.y);
    }
};

}  // namespace tessary
