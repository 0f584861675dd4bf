// A file that was found in a folder, or named by the user.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tessary {

struct FoundFile {
    std::wstring path{};   // full
    uint64_t size = 0;     // in bytes
    uint64_t time = 0;     // of its last change: 100 ns since 1601, UTC
    bool isNamed = false;  // the user has named the file itself, and not a folder
};

// `folder` ends in a backslash.
FoundFile FoundFileOf(std::wstring_view folder, const WIN32_FIND_DATAW& entry);

// What the system tells of a file that the user has named; size and time are 0 when that is
// nothing.
FoundFile NamedFileOf(const std::wstring& path);

std::vector<std::wstring> PathsOf(const std::vector<FoundFile>& files);

}  // namespace tessary
