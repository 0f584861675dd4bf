// Push buttons, check boxes, option buttons and group boxes, painted dark.
#pragma once

#include <windows.h>

namespace tessary {

// A `DarkPainter` of all of them but the group box.
void PaintButton(HWND button, HDC context, const RECT& client);

// Leaves free what lies within.
void PaintGroupBox(HWND box, HDC context, const RECT& client);

}  // namespace tessary
