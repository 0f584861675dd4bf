// Windows of plug-ins that close beside a modal dialog of ours.
#pragma once

#include <windows.h>

namespace tessary {

// A plug-in's window may post a request to quit when it closes, and a modal dialog takes that as
// its own end. For its own life this drops such requests as windows of this thread close.
class ClosingWindows {
  public:
    ClosingWindows()
        : hook_(SetWindowsHookExW(WH_CALLWNDPROCRET, Heard, nullptr, GetCurrentThreadId())) {}
    ClosingWindows(const ClosingWindows&) = delete;
    ClosingWindows& operator=(const ClosingWindows&) = delete;
    ~ClosingWindows() {
        if (hook_ != nullptr) UnhookWindowsHookEx(hook_);
    }

  private:
    static LRESULT CALLBACK Heard(int code, WPARAM wParam, LPARAM lParam);

    HHOOK hook_;
};

}  // namespace tessary
