// What a test needs to use the test plug-ins; README.md lists them.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <string>

#include "tests/support/loaded_library.h"

namespace tessary::test {

// The full path of a test plug-in, as TestPluginPath(L"iftst.spi").
inline std::wstring TestPluginPath(const std::wstring& fileName) {
    return TestProgramFolder() + L"plugins\\" + fileName;
}

// A `.tsa` archive. A member's name may stand behind a folder and `/`; both are in the system's
// code page.
struct ArchiveEntry {
    std::string name;
    std::string data;
};
inline std::string ArchiveOf(std::initializer_list<ArchiveEntry> entries,
                             const std::string& directives = {}) {
    std::string head = "TSA\n" + directives;
    std::string data;
    for (const ArchiveEntry& entry : entries) {
        const size_t name = entry.name.rfind('/') + 1;
        head += "member\t" + std::to_string(entry.data.size()) + '\t';
        head += entry.name.substr(0, name) + '\t' + entry.name.substr(name) + '\n';
        data += entry.data;
    }
    return head + '\n' + data;
}

// How often the loaded plug-in's function `name` has been called.
inline int TestCallCount(HMODULE plugin, const char* name) {
    const FARPROC function = GetProcAddress(plugin, "TestCallCount");
    return reinterpret_cast<int(__stdcall*)(const char*)>(reinterpret_cast<void*>(function))(name);
}

}  // namespace tessary::test
