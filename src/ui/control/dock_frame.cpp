#include "ui/control/dock_frame.h"

#include "ui/form/appearance.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

constexpr int kThickness = 4;  // pixels at 96 dpi

}  // namespace

// Hollow: what is behind it stays in sight, also where the system draws nothing translucent.
void DockFrame::ShowAround(const RECT& onScreen, HWND owner) {
    if (Handle() == nullptr &&
        !Window::Create({.className = L"TessaryDockFrame",
                         .style = WS_POPUP | WS_DISABLED,
                         .extendedStyle = WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE | WS_EX_TRANSPARENT,
                         .parent = owner})) {
        return;
    }
    if (IsWindowVisible(Handle()) && EqualRect(&onScreen, &place_)) return;
    place_ = onScreen;
    const int width = onScreen.right - onScreen.left;
    const int height = onScreen.bottom - onScreen.top;
    const int thickness = Metrics(Handle()).Scale(kThickness);
    const HRGN frame = CreateRectRgn(0, 0, width, height);
    const HRGN inside = CreateRectRgn(thickness, thickness, width - thickness, height - thickness);
    CombineRgn(frame, frame, inside, RGN_DIFF);
    DeleteObject(inside);
    SetWindowRgn(Handle(), frame, FALSE);  // which it owns from now on
    SetWindowPos(Handle(), HWND_TOP, onScreen.left, onScreen.top, width, height,
                 SWP_NOACTIVATE | SWP_SHOWWINDOW);
    InvalidateRect(Handle(), nullptr, TRUE);
    UpdateWindow(Handle());
}

void DockFrame::Hide() const {
    if (Handle() != nullptr) ShowWindow(Handle(), SW_HIDE);
}

LRESULT DockFrame::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCHITTEST) return HTTRANSPARENT;
    if (message != WM_ERASEBKGND) return Default(message, wParam, lParam);
    RECT area{};
    GetClientRect(Handle(), &area);
    FillRect(reinterpret_cast<HDC>(wParam), &area, BrushOf(COLOR_HIGHLIGHT));
    return 1;
}

}  // namespace tessary
