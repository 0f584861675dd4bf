// Windows that are parts of another one for a time, and stand alone for a time.
#pragma once

#include <windows.h>

namespace tessary {

// Makes a pop-up a part of `parent`, in front of its other parts and as visible as before. Its
// place is one of the parent's client area from then on.
void MakePart(HWND popup, HWND parent);

// Makes such a part a pop-up that `owner` owns, at its place on the screen. Hidden; the keyboard
// must not be in it.
void MakePopup(HWND part, HWND owner);

// Whether a window is a part of another one now.
bool IsPart(HWND window);

}  // namespace tessary
