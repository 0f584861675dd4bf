#include "tests/end_to_end/running_viewer.h"

#include <commctrl.h>

namespace tessary::test {
namespace {

constexpr DWORD kPatience = 20000;  // milliseconds

}  // namespace

bool WaitUntil(const std::function<bool()>& condition) {
    const DWORD start = GetTickCount();
    while (!condition()) {
        if (GetTickCount() - start > kPatience) return false;
        Sleep(20);
    }
    return true;
}

RunningViewer::RunningViewer(const std::wstring& folder, const std::wstring& arguments,
                             const std::wstring& settingsKey, WORD showCommand)
    : process_(
          L'"' + folder + L"TessaryViewer.exe\" " + arguments,
          {.environment = {{L"TESSARY_SETTINGS_KEY", settingsKey}}, .showCommand = showCommand}) {}

HWND RunningViewer::WindowOf(const wchar_t* className, const wchar_t* caption) const {
    HWND found = nullptr;
    WaitUntil([&] {
        DWORD owner = 0;
        do {
            found = FindWindowExW(nullptr, found, className, caption);
            GetWindowThreadProcessId(found, &owner);
        } while (found != nullptr && (owner != process_.Id() || !IsWindowVisible(found)));
        return found != nullptr || !process_.IsRunning();
    });
    return found;
}

std::wstring TextOf(HWND window) {
    wchar_t buffer[1024] = {};
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(buffer),
                        SMTO_ABORTIFHUNG, 1000, &length);
    return std::wstring(buffer, length < 1024 ? length : 0);
}

std::wstring RunningViewer::StatusText(HWND mainWindow, int part) const {
    const HWND bar = FindWindowExW(mainWindow, nullptr, STATUSCLASSNAMEW, nullptr);
    // The message carries a pointer, which the system does not translate between processes.
    wchar_t buffer[512] = {};
    void* const remote = VirtualAllocEx(process_.Handle(), nullptr, sizeof(buffer),
                                        MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (bar == nullptr || remote == nullptr) return {};
    if (LOWORD(SendMessageW(bar, SB_GETTEXTLENGTHW, part, 0)) < 512) {
        SendMessageW(bar, SB_GETTEXTW, part, reinterpret_cast<LPARAM>(remote));
        ReadProcessMemory(process_.Handle(), remote, buffer, sizeof(buffer), nullptr);
    }
    VirtualFreeEx(process_.Handle(), remote, 0, MEM_RELEASE);
    return buffer;
}

int RunningViewer::ExitCode() const {
    const DWORD code = process_.ExitCode(kPatience);
    return code == STILL_ACTIVE ? -1 : static_cast<int>(code);
}

}  // namespace tessary::test
