#include "ui/form/screen.h"

namespace tessary {
namespace {

MONITORINFO InfoOf(HMONITOR screen) {
    MONITORINFO info{};
    info.cbSize = sizeof(info);
    GetMonitorInfoW(screen, &info);
    return info;
}

}  // namespace

MONITORINFO ScreenOf(HWND window) {
    return InfoOf(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST));
}

MONITORINFO ScreenOf(const RECT& place) {
    return InfoOf(MonitorFromRect(&place, MONITOR_DEFAULTTONEAREST));
}

MONITORINFO MainScreen() {
    return InfoOf(MonitorFromPoint({}, MONITOR_DEFAULTTOPRIMARY));
}

RECT AllScreens() {
    const int left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const int top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return {left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN),
            top + GetSystemMetrics(SM_CYVIRTUALSCREEN)};
}

}  // namespace tessary
