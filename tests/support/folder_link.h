// Links to folders, which a test can only make by the means of the system that it runs on.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>

#include "app/base/paths.h"

namespace tessary::test {

// Whether a folder `link` now leads to `target`.
inline bool MakeFolderLink(const std::wstring& link, const std::wstring& target) {
    std::wstring command = LR"(cmd /c mklink /J ")" + link + LR"(" ")" + target + L'"';
    if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr) {
        const auto native = [](const std::wstring& path) {
            using Name = char*(CDECL*)(const wchar_t*);
            const auto name = reinterpret_cast<Name>(reinterpret_cast<void*>(
                GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
            char* const bytes = name(path.c_str());
            std::wstring result(bytes, bytes + std::strlen(bytes));
            HeapFree(GetProcessHeap(), 0, bytes);
            return result;
        };
        command = LR"(\\?\unix\bin\ln -s )" + native(target) + L' ' + native(link);
    }
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        nullptr, &start, &process)) {
        return false;
    }
    for (int turn = 0; turn < 500 && !IsFolder(link); ++turn)
        Sleep(10);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return IsFolder(link);
}

}  // namespace tessary::test
