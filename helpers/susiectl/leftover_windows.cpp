#include "helpers/susiectl/leftover_windows.h"

#include <new>

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

using Test = BOOL(WINAPI*)(HWND);

struct Search {
    Test test;
    std::vector<HWND> found;
};

// No C++ exception finds its way through the system's frames.
BOOL CALLBACK AddMatching(HWND window, LPARAM parameter) noexcept {
    auto& search = *reinterpret_cast<Search*>(parameter);
    try {
        if (search.test(window)) search.found.push_back(window);
        return TRUE;
    } catch (const std::bad_alloc&) {
        return FALSE;
    }
}

std::vector<HWND> WindowsOfThisThread(Test test) {
    Search search{test, {}};
    EnumThreadWindows(GetCurrentThreadId(), AddMatching, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

}  // namespace

EnabledWindows::EnabledWindows() : windows_(WindowsOfThisThread(IsWindowEnabled)) {}

void EnabledWindows::EnableAgain() const {
    for (HWND window : windows_)
        // Another plug-in's window may be among them, and crash when it hears of it.
        if (IsWindow(window) && !IsWindowEnabled(window))
            GuardedCall(AddressOf(EnableWindow), {Word(window), TRUE});
}

void DestroyLeftoverWindows(FARPROC function) {
    const HMODULE module = ModuleOf(function);
    if (!module) return;
    for (HWND window : WindowsOfThisThread(IsWindowVisible)) {
        if (reinterpret_cast<HMODULE>(GetWindowLongPtrW(window, GWLP_HINSTANCE)) != module)
            continue;
        // The plug-in hears of it, and may crash once more.
        GuardedCall(AddressOf(DestroyWindow), {Word(window)});
    }
}

}  // namespace tessary::susiectl
