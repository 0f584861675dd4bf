// The screens of the desktop.
#pragma once

#include <windows.h>

namespace tessary {

// Place and work area, in pixels of the desktop, of the screen that most of a window or place is
// on; the nearest one where it is on none.
MONITORINFO ScreenOf(HWND window);
MONITORINFO ScreenOf(const RECT& place);

// The same of the main screen.
MONITORINFO MainScreen();

// The least rectangle around all screens; with one screen, that one.
RECT AllScreens();

// Whether any part of a place can be seen.
inline bool IsOnAScreen(const RECT& place) {
    return MonitorFromRect(&place, MONITOR_DEFAULTTONULL) != nullptr;
}

inline SIZE SizeOf(const RECT& place) {
    return {place.right - place.left, place.bottom - place.top};
}

}  // namespace tessary
