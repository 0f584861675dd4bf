// A desktop that nobody sees.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// For processes whose windows and messages are for nobody. It stays as long as this process.
class HiddenDesktop {
  public:
    // The one of this process.
    static const HiddenDesktop& Own();

    // For STARTUPINFO; empty when the system has none to give.
    const std::wstring& Name() const { return name_; }

    // Whether a process shows a window there. Not all systems keep desktops apart.
    bool HasWindowOf(DWORD process) const;

  private:
    HiddenDesktop();

    std::wstring name_;
    HDESK desktop_ = nullptr;
};

// Whether a process shows a window where this one shows its own.
bool ShowsWindow(DWORD process);

}  // namespace tessary
