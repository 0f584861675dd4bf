// The real program, started by a test on settings of its own and watched from outside.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "tests/support/child_process.h"

namespace tessary::test {

// Waits until `condition` holds, at most 20 seconds; whether it came to hold.
bool WaitUntil(const std::function<bool()>& condition);

// The text of a control of a dialog or of a window of any program, as that itself would read it.
std::wstring TextOf(HWND window);

// The process ends with it, at the latest.
class RunningViewer {
  public:
    // Starts `folder`TessaryViewer.exe with the arguments; its settings are at `settingsKey`.
    // `showCommand` is what a shortcut says of the window (SW_…); nothing by default.
    RunningViewer(const std::wstring& folder, const std::wstring& arguments,
                  const std::wstring& settingsKey, WORD showCommand = SW_SHOWDEFAULT);

    // The visible top-level window of that caption, and the main one, which tells what is shown;
    // null when there is none within the time of WaitUntil.
    HWND WindowOfCaption(const std::wstring& caption) const {
        return WindowOf(nullptr, caption.c_str());
    }
    HWND MainWindow() const { return WindowOf(L"TessaryMainWindow", nullptr); }

    // The text of a part, counted from 0, of the main window's status bar.
    std::wstring StatusText(HWND mainWindow, int part) const;

    // Waits for the end of the process and answers its exit code; -1 when it does not end in time.
    int ExitCode() const;

  private:
    HWND WindowOf(const wchar_t* className, const wchar_t* caption) const;

    ChildProcess process_;
};

}  // namespace tessary::test
