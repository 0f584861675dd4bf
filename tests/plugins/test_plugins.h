// What a test needs to use the test plug-ins; README.md lists them.
#pragma once

#include <windows.h>

#include <string>

#include "tests/plugins/pattern.h"

namespace tessary::test {

// The folder of the running test program, with a backslash at its end.
inline std::wstring TestProgramFolder() {
    wchar_t path[MAX_PATH];
    std::wstring folder(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
    return folder.substr(0, folder.find_last_of(L'\\') + 1);
}

// The full path of a test plug-in, as TestPluginPath(L"iftst.spi").
inline std::wstring TestPluginPath(const std::wstring& fileName) {
    return TestProgramFolder() + L"plugins\\" + fileName;
}

// How often the loaded plug-in's function `name` has been called.
inline int TestCallCount(HMODULE plugin, const char* name) {
    const FARPROC function = GetProcAddress(plugin, "TestCallCount");
    return reinterpret_cast<int(__stdcall*)(const char*)>(reinterpret_cast<void*>(function))(name);
}

}  // namespace tessary::test
