// What a plug-in leaves behind, one that crashed in a dialog or message box above all: windows of
// its own on the screen, and the program's windows disabled.
#pragma once

#include <windows.h>

#include <vector>

namespace tessary::susiectl {

// This thread's top-level windows, as of now. Short of memory it knows fewer.
class KnownWindows {
  public:
    KnownWindows();

    // Enables those that have been disabled since. Throws std::bad_alloc.
    void EnableAgain() const;

    // For a plug-in whose `function` has crashed: destroys this thread's windows that belong to it,
    // the visible ones, since nobody runs their dialogs any more, and those that are new, since
    // their making was not finished.
    void DestroyLeftovers(FARPROC function) const;

  private:
    std::vector<HWND> windows_;
    std::vector<HWND> enabled_;
};

// Whether a plug-in shows windows in this thread that it made: its user may still be at work there.
bool ShowsWindows(HMODULE module);

// Whether a plug-in has a window in this thread that messages may be on their way to: one that is
// no other window's child. Allocates nothing.
bool HasWindows(HMODULE module);

// For a plug-in that is to be freed: destroys this thread's windows that belong to it, hidden ones
// too. False when a window is left that would run into its code, as one of the program's that the
// plug-in has subclassed.
bool LetGoOfWindows(HMODULE module);

}  // namespace tessary::susiectl
