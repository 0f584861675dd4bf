// Edges, lists to choose from and texts, painted dark.
#pragma once

#include <windows.h>

namespace tessary {

// What a control has outside of its client area, over that which the system has drawn: its edge,
// and the corner between two scroll bars.
void PaintEdge(HWND control);

// A `DarkPainter` of a field with a list that drops down.
void PaintComboBox(HWND box, HDC context, const RECT& client);

// Whether the system would paint an edit control, or a text, in colours that nobody can choose, or
// a line between parts; and the `DarkPainter` of that.
bool PaintsEditWrong(HWND edit);
void PaintEdit(HWND edit, HDC context, const RECT& client);
bool PaintsTextWrong(HWND text);
void PaintText(HWND text, HDC context, const RECT& client);

}  // namespace tessary
