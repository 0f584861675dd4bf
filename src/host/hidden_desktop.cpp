#include "host/hidden_desktop.h"

namespace tessary {
namespace {

struct Wanted {
    DWORD process;
    bool isThere;
};

BOOL CALLBACK Find(HWND window, LPARAM data) {
    auto& wanted = *reinterpret_cast<Wanted*>(data);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    // IsWindowVisible knows this process's own desktop only.
    const bool isShown = (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0;
    wanted.isThere = process == wanted.process && isShown;
    return wanted.isThere ? FALSE : TRUE;
}

// Of no desktop: on the thread's own.
bool HasWindow(HDESK desktop, DWORD process) {
    Wanted wanted{process, false};
    EnumDesktopWindows(desktop, Find, reinterpret_cast<LPARAM>(&wanted));
    return wanted.isThere;
}

}  // namespace

const HiddenDesktop& HiddenDesktop::Own() {
    static const HiddenDesktop own;
    return own;
}

// Open until the process ends: it goes with its last handle.
HiddenDesktop::HiddenDesktop()
    : name_(L"Tessary_Viewer_" + std::to_wstring(GetCurrentProcessId())),
      desktop_(CreateDesktopW(name_.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr)) {
    if (desktop_ == nullptr) name_.clear();
}

bool HiddenDesktop::HasWindowOf(DWORD process) const {
    return HasWindow(desktop_, process);
}

bool ShowsWindow(DWORD process) {
    return HasWindow(nullptr, process);
}

}  // namespace tessary
