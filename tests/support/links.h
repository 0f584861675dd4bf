// Links, which a test can only make by the means of the system that it runs on.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

#include "app/base/paths.h"
#include "tests/support/child_process.h"
#include "tests/support/loaded_library.h"

namespace tessary::test {

// Whether a new name `link` now leads to `target`; `kind` is mklink's switch.
inline bool MakeLink(const std::wstring& link, const std::wstring& target, const wchar_t* kind) {
    std::wstring command =
        L"cmd /c mklink " + (kind + (LR"( ")" + link)) + LR"(" ")" + target + L'"';
    using Name = char* CDECL(const wchar_t*);
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    if (Name* const nameOf = FoundFunction{GetProcAddress(kernel, "wine_get_unix_file_name")}) {
        const auto native = [&](const std::wstring& path) {
            char* const bytes = nameOf(path.c_str());
            const std::u8string name = reinterpret_cast<char8_t*>(bytes);
            HeapFree(GetProcessHeap(), 0, bytes);
            return std::filesystem::path(name).wstring();
        };
        command = LR"(\\?\unix\bin\ln -s )" + native(target) + L' ' + native(link);
    }
    const ChildProcess maker(command, {.flags = CREATE_NO_WINDOW});
    for (int turn = 0; turn < 500 && maker.HasStarted() && !PathExists(link); ++turn)
        Sleep(10);
    return PathExists(link);
}
inline bool MakeFolderLink(const std::wstring& link, const std::wstring& target) {
    return MakeLink(link, target, L"/J") && IsFolder(link);
}
inline bool MakeFileLink(const std::wstring& link, const std::wstring& target) {
    return MakeLink(link, target, L"");
}

}  // namespace tessary::test
