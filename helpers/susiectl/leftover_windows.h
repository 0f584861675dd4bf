// The windows that a crashed plug-in leaves on the screen.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Destroys this thread's visible windows that belong to the plug-in of `function`: nobody runs
// their dialogs any more.
void DestroyLeftoverWindows(FARPROC function);

}  // namespace tessary::susiectl
