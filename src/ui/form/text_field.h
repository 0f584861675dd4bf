// Fields that the user types into or copies from.
#pragma once

#include <windows.h>

namespace tessary {

// Whether a window is a text field, also one that only shows its text.
bool IsTextField(HWND window);

// Whether the user can type text into a window.
bool TakesText(HWND window);

}  // namespace tessary
