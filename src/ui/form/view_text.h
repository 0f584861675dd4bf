// Texts that stand in a picture's place or upon it.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// The one of the user's two text colours that can be read on the background.
COLORREF ReadableOn(COLORREF background);

// Paints a text in the middle of the window's area, wrapped to its width, on a ground of this
// colour. The result is what it has painted; nothing else of the area is touched.
RECT PaintReason(HDC screen, HWND window, const std::wstring& text, COLORREF background);

// Paints a short text in a box like a tool tip's at the lower edge of the window's area. The result
// is what it has painted.
RECT PaintNote(HDC screen, HWND window, const std::wstring& text);

}  // namespace tessary
