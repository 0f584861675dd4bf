// What the system shows, and what it is to show dark of our windows.
#pragma once

#include <windows.h>

namespace tessary {

// Whether the user has switched high contrast on.
bool ShowsHighContrast();

// Whether programs are to be dark. Never before version 1809 of Windows 10, the first that shows
// its own ones so.
bool WantsDarkPrograms();

// The calls below do nothing where the system has no such looks.

// The frame and the title of a top-level window.
void ShowFrameDark(HWND window, bool isDark);

// All menus of the process that drop down or pop up.
void ShowMenusDark(bool isDark);

// What the system draws of a control: scroll bars, and what we leave to it.
void ShowControlDark(HWND control, bool isDark);

// Whether the system has such looks: then it lets windows draw their menu bars, too.
bool HasDarkLooks();

}  // namespace tessary
