#include "helpers/susiectl/leftover_windows.h"

#include <vector>

#include "helpers/susiectl/guard.h"

namespace tessary::susiectl {
namespace {

HMODULE ModuleOf(FARPROC function) {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        reinterpret_cast<const wchar_t*>(function), &module);
    return module;
}

BOOL CALLBACK AddVisible(HWND window, LPARAM list) {
    if (IsWindowVisible(window)) reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
    return TRUE;
}

std::vector<HWND> VisibleWindowsOfThisThread() {
    std::vector<HWND> windows;
    EnumThreadWindows(GetCurrentThreadId(), AddVisible, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

}  // namespace

void DestroyLeftoverWindows(FARPROC function) {
    const HMODULE module = ModuleOf(function);
    if (!module) return;
    for (HWND window : VisibleWindowsOfThisThread()) {
        if (reinterpret_cast<HMODULE>(GetWindowLongPtrW(window, GWLP_HINSTANCE)) != module)
            continue;
        // The plug-in hears of it, and may crash once more.
        GuardedCall(AddressOf(DestroyWindow), {Word(window)});
    }
}

}  // namespace tessary::susiectl
