// The file names of a command line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// Appends what the arguments of a command line name, as full paths: a file itself, of a folder the
// plain files directly in it; names of nothing that exists add nothing. On the NT family a name in
// double quotes may hold blanks; on the Windows 95 family every blank separates, and short names
// become long ones; another platform yields nothing. `commandLine` starts behind the program's own
// name. Returns how many names were added; `missing`, where it is given, receives how many name
// nothing that exists.
int ParseCommandLine(std::wstring_view commandLine, uint32_t platformId,
                     std::vector<std::wstring>& files, int* missing = nullptr);

// The process's command line behind the program's own name.
std::wstring CommandLineArguments();

}  // namespace tessary
