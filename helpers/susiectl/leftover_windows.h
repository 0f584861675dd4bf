// What a plug-in that crashed in a dialog or message box leaves behind: windows of its own on the
// screen, and the program's windows disabled.
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

}  // namespace tessary::susiectl
