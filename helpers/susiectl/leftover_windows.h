// What a plug-in leaves behind, one that crashed in a dialog or message box above all: windows of
// its own on the screen, and the program's windows disabled.
#pragma once

#include <windows.h>

#include <vector>

namespace tessary::susiectl {

// This thread's top-level windows that take input, as of now. Short of memory it knows fewer.
class EnabledWindows {
  public:
    EnabledWindows();

    // Enables those that have been disabled since. Throws std::bad_alloc.
    void EnableAgain() const;

  private:
    std::vector<HWND> windows_;
};

// Destroys this thread's visible windows that belong to the plug-in of `function`: nobody runs
// their dialogs any more.
void DestroyLeftoverWindows(FARPROC function);

// Whether a plug-in shows windows in this thread that it made: its user may still be at work there.
bool ShowsWindows(HMODULE module);

// For a plug-in that is to be freed: destroys this thread's windows that belong to it, hidden ones
// too. False when a window is left that would run into its code, as one of the program's that the
// plug-in has subclassed.
bool LetGoOfWindows(HMODULE module);

}  // namespace tessary::susiectl
