// The file names of a command line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/base/found_file.h"

namespace tessary {

// The names in the arguments of a command line, which starts behind the program's own name, as full
// paths, whether there is such a file or not: no drive is asked. On the NT family a name in double
// quotes may hold blanks; on the Windows 95 family every blank separates, and short names become
// long ones; another platform yields nothing.
std::vector<std::wstring> CommandLineNames(std::wstring_view commandLine, uint32_t platformId);

// What became of names that the user has given.
struct NamedFiles {
    int missing = 0;    // how many name nothing that exists
    bool whole = true;  // no folder's list was cut short
};

// Appends what these full paths name: a file itself, of a folder the plain files directly in it;
// names of nothing that exists add nothing.
NamedFiles AppendNamedFiles(const std::vector<std::wstring>& names, std::vector<FoundFile>& files);

// Both together. Returns how many names were added.
int ParseCommandLine(std::wstring_view commandLine, uint32_t platformId,
                     std::vector<std::wstring>& files);

// The process's command line behind the program's own name.
std::wstring CommandLineArguments();

}  // namespace tessary
