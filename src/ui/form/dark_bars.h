// Status bars, progress bars, sliders and the headings of lists, painted dark.
#pragma once

#include <windows.h>

namespace tessary {

// Each a `DarkPainter`.
void PaintStatusBar(HWND bar, HDC context, const RECT& client);
void PaintProgressBar(HWND bar, HDC context, const RECT& client);
void PaintSlider(HWND slider, HDC context, const RECT& client);
void PaintHeader(HWND header, HDC context, const RECT& client);

}  // namespace tessary
