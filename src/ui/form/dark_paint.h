// What the painters of dark controls share.
#pragma once

#include <windows.h>

#include <string>

#include "app/base/handles.h"
#include "ui/form/appearance.h"

namespace tessary {

inline void Fill(HDC context, const RECT& area, COLORREF color) {
    FillRect(context, &area, BrushIn(color));
}

// A frame of `thickness` pixels inside of the area.
void Frame(HDC context, RECT area, COLORREF color, int thickness = 1);

// A filled shape without an edge.
void FillShape(HDC context, const POINT* points, int count, COLORREF color);

// The system's dotted rectangle, whatever the context's colours are.
void PaintFocus(HDC context, const RECT& area);

// Text in this colour upon what is there, by DrawText's style.
void Write(HDC context, const std::wstring& text, RECT area, COLORREF color, UINT style);

std::wstring TextOfWindow(HWND window);

// The style that leaves mnemonics without their lines where the user works without the keyboard;
// and whether the focus is to be seen.
UINT MnemonicStyle(HWND control);
bool ShowsFocus(HWND control);

// A control's font in a context, for as long as this lives.
class FontInUse {
  public:
    FontInUse(HWND control, HDC context);
    FontInUse(const FontInUse&) = delete;
    FontInUse& operator=(const FontInUse&) = delete;
    ~FontInUse();

  private:
    HDC context_;
    HGDIOBJ former_ = nullptr;
};

// Paints all of a control's client area into the context, whose place is the control's.
using DarkPainter = void (*)(HWND control, HDC context, const RECT& client);

// Answers WM_PAINT by a painter, off the screen first.
void PaintBuffered(HWND control, DarkPainter painter);

}  // namespace tessary
