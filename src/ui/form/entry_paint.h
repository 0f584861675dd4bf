// How an entry of a list looks.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

struct EntryLook {
    int dpi = USER_DEFAULT_SCREEN_DPI;
    HFONT font = nullptr;  // the caller's
    std::wstring text{};
    bool isDimmed = false;  // there is nothing to choose
    bool isInView = false;
    bool isChosen = false;
    bool isFocused = false;
};

// Paints all of that area. A text that is too wide is shortened: a path in its middle, so that the
// file name stays.
void PaintEntry(HDC context, const RECT& area, const EntryLook& look);

}  // namespace tessary
