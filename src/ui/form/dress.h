// Windows and their controls as the appearance wants them (appearance.h).
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

namespace tessary {

// Takes what the user wants, and gives all dressed windows their new look at once.
void SetAppearance(int16_t wanted);

// Gives a top-level window, or one that stands in for such, and all in it the look that holds, and
// those to come until it is destroyed: it passes its messages to `AnswerForLook`. Costs nothing
// while it is light. May be called again, for controls that have been added.
void Dress(HWND window);

// The same for one control, with what is in it.
void DressControl(HWND control);

// To be asked first of each message of such a window: follows the system's changes, tells the
// colours of controls, and paints the menu bar. An answer is the message's, a brush too.
std::optional<LRESULT> AnswerForLook(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

// Whether the answer to such a message is a brush, which dialogs hand back in a way of its own.
bool AsksForBrush(UINT message);

}  // namespace tessary
