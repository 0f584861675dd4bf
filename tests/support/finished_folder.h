// Where the finished program stands, for tests and benchmarks.
#pragma once

#include <windows.h>

#include <string>

namespace tessary::test {

// The folder of the running test program, with a trailing backslash.
inline std::wstring TestProgramFolder() {
    wchar_t path[MAX_PATH];
    const std::wstring program(path, GetModuleFileNameW(nullptr, path, MAX_PATH));
    return program.substr(0, program.find_last_of(L'\\') + 1);
}

// The finished application folder, which stands beside that, with a trailing backslash.
inline std::wstring FinishedFolder() {
    return TestProgramFolder() + LR"(..\bin\)";
}

}  // namespace tessary::test
