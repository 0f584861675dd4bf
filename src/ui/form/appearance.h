// How the program looks: in the system's colours, or dark in its own.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tessary {

// What the user may want. Where the system shows high contrast, its colours hold in any case.
enum class Appearance : int16_t { kAsSystem = 0, kLight = 1, kDark = 2 };
constexpr int kAppearances = 3;

// The colours of a dark window. All texts can be read on all grounds that they come upon: the
// contrast is 4.5 and more, of texts of disabled parts too.
struct DarkColors {
    COLORREF view = RGB(0x14, 0x14, 0x14);    // around a picture
    COLORREF field = RGB(0x1C, 0x1C, 0x1C);   // lists and fields
    COLORREF face = RGB(0x2B, 0x2B, 0x2B);    // windows and bars
    COLORREF button = RGB(0x3A, 0x3A, 0x3A);  // what can be pressed
    COLORREF hot = RGB(0x48, 0x48, 0x48);     // below the pointer, and tool tips
    COLORREF pressed = RGB(0x22, 0x22, 0x22);
    COLORREF text = RGB(0xF0, 0xF0, 0xF0);
    COLORREF disabledText = RGB(0xA2, 0xA2, 0xA2);
    COLORREF edge = RGB(0x85, 0x85, 0x85);  // what can be told by its edge alone
    COLORREF line = RGB(0x50, 0x50, 0x50);  // between parts
    COLORREF highlight = RGB(0x11, 0x68, 0xC4);
    COLORREF highlightText = RGB(0xFF, 0xFF, 0xFF);
    COLORREF accent = RGB(0x4C, 0x9F, 0xF0);  // of the focus, marks and bars
};
constexpr DarkColors kDark;

// Takes what the user wants from now on. The windows that are there are told by `Restyle`
// (ui/form/dress.h).
void WantAppearance(Appearance wanted);

// Asks the system anew what it shows. Whether that has changed which colours hold.
bool LookAtSystem();

// Whether the dark colours hold now.
bool IsDark();

// Whether the system shows high contrast: then nothing but its own colours is to be used, none
// mixed of them.
bool IsHighContrast();

// What stands for a colour of the system (COLOR_…), and a brush of it, which stays the house's.
COLORREF ColorOf(int index);
HBRUSH BrushOf(int index);

// A brush of this colour for as long as the process lasts.
HBRUSH BrushIn(COLORREF color);

}  // namespace tessary
