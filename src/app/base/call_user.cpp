#include "app/base/call_user.h"

namespace tessary {
namespace {

bool IsInFront() {
    DWORD process = 0;
    GetWindowThreadProcessId(GetForegroundWindow(), &process);
    return process == GetCurrentProcessId();
}

bool IsOurs(HWND window) {
    return GetWindowLongPtrW(window, GWLP_HINSTANCE) ==
           reinterpret_cast<LONG_PTR>(GetModuleHandleW(nullptr));
}

// Windows of plug-ins may come to stand in front of ours.
BOOL CALLBACK TakeOutermost(HWND window, LPARAM found) {
    if (!IsWindowVisible(window) || GetWindow(window, GW_OWNER) != nullptr || !IsOurs(window)) {
        return TRUE;
    }
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

bool CanOwn(HWND window) {
    return IsWindowVisible(window) && IsWindowEnabled(window) &&
           GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
}

void Flash(HWND window, DWORD flags) {
    FLASHWINFO flash{sizeof(FLASHWINFO), window, flags, 0, 0};
    FlashWindowEx(&flash);
}

}  // namespace

HWND WindowForMessages() {
    if (const HWND active = GetActiveWindow()) return active;
    HWND outermost = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), TakeOutermost, reinterpret_cast<LPARAM>(&outermost));
    if (outermost == nullptr) return nullptr;
    const HWND last = GetLastActivePopup(outermost);
    return CanOwn(last) ? last : outermost;
}

HWND WindowWithButton(HWND window) {
    while ((GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_APPWINDOW) == 0) {
        const HWND owner = GetWindow(window, GW_OWNER);
        if (owner == nullptr) break;
        window = owner;
    }
    return window;
}

UserCall::UserCall(HWND window)
    : window_(window != nullptr && !IsInFront() ? WindowWithButton(window) : nullptr) {
    if (window_ != nullptr) Flash(window_, FLASHW_ALL | FLASHW_TIMERNOFG);
}

UserCall::~UserCall() {
    if (window_ != nullptr) Flash(window_, FLASHW_STOP);
}

}  // namespace tessary
