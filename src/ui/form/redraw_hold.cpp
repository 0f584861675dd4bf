#include "ui/form/redraw_hold.h"

namespace tessary {

// The control is told not to paint its content; a window that does not count as visible leaves out
// its scroll bar as well, which would otherwise be computed and painted anew for every entry.
RedrawHold::RedrawHold(const Control& control)
    : window_(control.Handle()), visible_((GetWindowLongW(window_, GWL_STYLE) & WS_VISIBLE) != 0) {
    SendMessageW(window_, WM_SETREDRAW, FALSE, 0);
    if (visible_) DefWindowProcW(window_, WM_SETREDRAW, FALSE, 0);
}

RedrawHold::~RedrawHold() {
    if (!IsWindow(window_)) return;
    if (visible_) DefWindowProcW(window_, WM_SETREDRAW, TRUE, 0);
    SendMessageW(window_, WM_SETREDRAW, TRUE, 0);
    if (visible_) {
        RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME);
    } else {
        ShowWindow(window_, SW_HIDE);  // some controls become visible by that message
    }
}

}  // namespace tessary
