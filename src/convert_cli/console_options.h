// The arguments of the console converter.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tessary {

struct ConsoleOptions {
    std::vector<std::wstring> inputs;  // names of files and folders
    std::wstring targetFolder;         // full path
    bool recursive = false;
    UINT codePage = CP_UTF8;  // of the log, where it does not go to a console
    // Whether the arguments limit this side.
    bool givesMinWidth = false;
    bool givesMinHeight = false;
};

// Takes the arguments apart. Those that stand for settings change Values(), whose stored ones thus
// hold where no argument says otherwise. Answers what is wrong with them, for the user; empty when
// nothing is.
std::wstring ParseOptions(const std::vector<std::wstring>& arguments, ConsoleOptions& options);

}  // namespace tessary
