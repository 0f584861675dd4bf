#include "ui/main/full_screen.h"

#include <utility>

#include "ui/form/metrics.h"
#include "ui/form/screen.h"

namespace tessary {
namespace {

// The system menu and the minimise box stay: without them the taskbar's button does nothing. Some
// versions leave the taskbar in front of a window that counts as maximised.
constexpr LONG_PTR kFrameStyles = WS_CAPTION | WS_THICKFRAME | WS_MAXIMIZEBOX | WS_MAXIMIZE;

WINDOWPLACEMENT PlacementOf(HWND window) {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof(placement);
    GetWindowPlacement(window, &placement);
    return placement;
}

bool IsSame(const MONITORINFO& screen, const MONITORINFO& other) {
    return EqualRect(&screen.rcMonitor, &other.rcMonitor) &&
           EqualRect(&screen.rcWork, &other.rcWork);
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
    former_ = Former{PlacementOf(window),   frame, ScreenOf(frame),
                     Metrics(window).Dpi(), style, UniqueMenu(GetMenu(window))};
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
    // Where the screen is another one now, the system finds the place, and maximises anew.
    const bool isSame = IsSame(ScreenOf(former.frame), former.screen);
    if (!isSame) frame &= ~LONG_PTR{WS_MAXIMIZE};
    SetWindowLongPtrW(window, GWL_STYLE, now | frame);
    SetMenu(window, former.menu.Release());
    // A screen of another resolution has the window scale itself on its way there.
    for (int pass = 0; pass < 2; ++pass) {
        const int dpi = Metrics(window).Dpi();
        WINDOWPLACEMENT placement = former.placement;
        RECT& normal = placement.rcNormalPosition;
        const SIZE size = SizeOf(normal);
        normal.right = normal.left + MulDiv(size.cx, dpi, former.dpi);
        normal.bottom = normal.top + MulDiv(size.cy, dpi, former.dpi);
        SetWindowPlacement(window, &placement);
        if (isSame && dpi == former.dpi) MoveTo(window, former.frame);
    }
}

void FullScreen::Cover(HWND window) const {
    MoveTo(window, ScreenOf(window).rcMonitor);
}

void FullScreen::Keep(HWND window, WINDOWPOS& place) const {
    if (!IsOn() || IsIconic(window)) return;
    RECT target{};
    GetWindowRect(window, &target);
    if ((place.flags & SWP_NOMOVE) == 0) {
        OffsetRect(&target, place.x - target.left, place.y - target.top);
    }
    if ((place.flags & SWP_NOSIZE) == 0) {
        target.right = target.left + place.cx;
        target.bottom = target.top + place.cy;
    }
    const RECT screen = ScreenOf(target).rcMonitor;
    place.x = screen.left;
    place.y = screen.top;
    place.cx = SizeOf(screen).cx;
    place.cy = SizeOf(screen).cy;
    place.flags &= ~UINT{SWP_NOMOVE | SWP_NOSIZE};
}

WINDOWPLACEMENT FullScreen::Placement(HWND window) const {
    return former_ ? former_->placement : PlacementOf(window);
}

int FullScreen::Dpi(HWND window) const {
    return former_ ? former_->dpi : Metrics(window).Dpi();
}

}  // namespace tessary
