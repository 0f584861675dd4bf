// The files that the arguments of the console converter name.
#pragma once

#include <string>
#include <vector>

#include "convert/convert_monitor.h"

namespace tessary {

struct InputFiles {
    std::vector<ConvertSource> files;    // in the order of the names
    std::vector<std::wstring> troubles;  // what was not found or read, a line each for the user
};

// A file stands for itself; a folder for the plain files directly in it, with `recursive` also for
// those in the folders below; a name with `*` or `?` in its last part for the files that it
// matches. Hidden and system files are taken only by their own names.
InputFiles FindInputFiles(const std::vector<std::wstring>& names, bool recursive);

}  // namespace tessary
