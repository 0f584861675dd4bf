// Keeps the user out of the program's windows while something must have all attention.
#pragma once

#include <windows.h>

#include <vector>

namespace tessary {

// For its own life all visible top-level windows of this thread are disabled, but for one. In the
// end they are enabled again, and the one that was active before is again, with the keyboard where
// it was.
class TaskModal {
  public:
    // `except` is spared: the owner of a modal dialog, which the system disables itself, or null.
    explicit TaskModal(HWND except);
    TaskModal(const TaskModal&) = delete;
    TaskModal& operator=(const TaskModal&) = delete;
    ~TaskModal();

  private:
    static BOOL CALLBACK Visit(HWND window, LPARAM self);

    HWND except_;
    HWND active_;
    HWND focused_;
    std::vector<HWND> disabled_;
};

}  // namespace tessary
