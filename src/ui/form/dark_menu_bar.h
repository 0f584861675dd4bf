// The menu bar of a window, painted dark where the system lets windows do that.
#pragma once

#include <windows.h>

#include <optional>

namespace tessary {

// To be asked of each message of a window with a menu bar, while the dark colours hold. No answer
// leaves the message to others.
std::optional<LRESULT> PaintMenuBar(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace tessary
