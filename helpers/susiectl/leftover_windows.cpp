#include "helpers/susiectl/leftover_windows.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "helpers/susiectl/guard.h"
#include "helpers/susiectl/module_at.h"

namespace tessary::susiectl {
namespace {

// Whether the plug-in made the window.
bool IsWindowOf(HMODULE module, HWND window) {
    return reinterpret_cast<HMODULE>(GetWindowLongPtrW(window, GWLP_HINSTANCE)) == module ||
           reinterpret_cast<HMODULE>(GetClassLongPtrW(window, GCLP_HMODULE)) == module;
}

// Whether messages to the window run through the module's code.
bool RunsCodeOf(HMODULE module, HWND window) {
    // What the other one answers for a window is no address.
    const LONG_PTR procedure = IsWindowUnicode(window) ? GetWindowLongPtrW(window, GWLP_WNDPROC)
                                                       : GetWindowLongPtrA(window, GWLP_WNDPROC);
    return ModuleAt(reinterpret_cast<const void*>(procedure)) == module;
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

// The children too, of whatever depth.
BOOL CALLBACK AddWithChildren(HWND window, LPARAM parameter) noexcept {
    if (!AddMatching(window, parameter)) return FALSE;
    EnumChildWindows(window, AddMatching, parameter);
    return TRUE;
}

BOOL WINAPI IsAny(HWND) {
    return TRUE;
}

std::vector<HWND> WindowsOfThisThread(Test test) {
    Search search{test, {}};
    EnumThreadWindows(GetCurrentThreadId(), AddMatching, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

// The plug-in hears of it, and may crash once more.
void Destroy(HWND window) {
    GuardedCall(AddressOf(DestroyWindow), {Word(window)});
}

}  // namespace

KnownWindows::KnownWindows() : windows_(WindowsOfThisThread(IsAny)) {
    try {
        std::ranges::copy_if(windows_, std::back_inserter(enabled_), IsWindowEnabled);
    } catch (const std::bad_alloc&) {
        return;
    }
}

void KnownWindows::EnableAgain() const {
    for (HWND window : enabled_)
        // Another plug-in's window may be among them, and crash when it hears of it.
        if (IsWindow(window) && !IsWindowEnabled(window))
            GuardedCall(AddressOf(EnableWindow), {Word(window), TRUE});
}

void KnownWindows::DestroyLeftovers(FARPROC function) const {
    const HMODULE module = ModuleAt(reinterpret_cast<const void*>(function));
    if (!module) return;
    for (HWND window : WindowsOfThisThread(IsAny)) {
        const bool isNew = std::ranges::find(windows_, window) == windows_.end();
        if ((isNew || IsWindowVisible(window)) && IsWindowOf(module, window)) Destroy(window);
    }
}

bool ShowsWindows(HMODULE module) {
    return std::ranges::any_of(WindowsOfThisThread(IsWindowVisible),
                               [&](HWND window) { return IsWindowOf(module, window); });
}

bool HasWindows(HMODULE module) {
    const DWORD thread = GetCurrentThreadId();
    for (HWND parent : {HWND_DESKTOP, HWND_MESSAGE})
        for (HWND window = nullptr;
             (window = FindWindowExW(parent, window, nullptr, nullptr)) != nullptr;)
            if (GetWindowThreadProcessId(window, nullptr) == thread && IsWindowOf(module, window))
                return true;
    return false;
}

bool LetGoOfWindows(HMODULE module) {
    for (HWND window : WindowsOfThisThread(IsAny))
        if (IsWindowOf(module, window)) Destroy(window);
    Search all{IsAny, {}};
    EnumThreadWindows(GetCurrentThreadId(), AddWithChildren, reinterpret_cast<LPARAM>(&all));
    return std::ranges::none_of(all.found, [&](HWND window) { return RunsCodeOf(module, window); });
}

}  // namespace tessary::susiectl
