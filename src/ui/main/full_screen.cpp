#include "ui/main/full_screen.h"

#include <utility>

namespace tessary {
namespace {

// Some versions leave the taskbar in front of a window that counts as maximised.
constexpr LONG_PTR kFrameStyles = WS_OVERLAPPEDWINDOW | WS_MAXIMIZE;

WINDOWPLACEMENT PlacementOf(HWND window) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof(placement);
    GetWindowPlacement(window, &placement);
    return placement;
}

// A frame that has changed is computed anew by that.
void MoveTo(HWND window, const RECT& place) {
    SetWindowPos(window, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
}

}  // namespace

void FullScreen::Enter(HWND window) {
    if (IsOn() || IsIconic(window)) return;
    RECT frame{};
    GetWindowRect(window, &frame);
    const LONG_PTR style = GetWindowLongPtrW(window, GWL_STYLE);
    former_ = Former{PlacementOf(window), frame, style, UniqueMenu(GetMenu(window))};
    SetWindowLongPtrW(window, GWL_STYLE, style & ~kFrameStyles);
    SetMenu(window, nullptr);
    Cover(window);
}

void FullScreen::Leave(HWND window) {
    if (!IsOn()) return;
    Former former = *std::exchange(former_, std::nullopt);
    // Whether the window is visible or enabled now is not what is put back.
    const LONG_PTR now = GetWindowLongPtrW(window, GWL_STYLE);
    LONG_PTR frame = former.style & kFrameStyles;
    // A window whose screen is gone finds another one, and is maximised there anew.
    const bool screenIsThere = MonitorFromRect(&former.frame, MONITOR_DEFAULTTONULL) != nullptr;
    if (!screenIsThere) frame &= ~LONG_PTR{WS_MAXIMIZE};
    SetWindowLongPtrW(window, GWL_STYLE, now | frame);
    SetMenu(window, former.menu.Release());
    SetWindowPlacement(window, &former.placement);
    if (screenIsThere) MoveTo(window, former.frame);
}

void FullScreen::Cover(HWND window) const {
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    MoveTo(window, monitor.rcMonitor);
}

WINDOWPLACEMENT FullScreen::Placement(HWND window) const {
    return former_ ? former_->placement : PlacementOf(window);
}

}  // namespace tessary
