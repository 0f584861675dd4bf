// One control of the system that is painted dark, or by the system as it is told.
#pragma once

#include <windows.h>

namespace tessary {

// Gives a control the look that holds now; it keeps following from then on when it is called
// again. Controls of kinds that need nothing stay as they are.
void DressAsItIs(HWND control);

bool IsToolTip(HWND window);

}  // namespace tessary
