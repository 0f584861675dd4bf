// The arguments of the console converter.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "convert_cli/console_stream.h"

namespace tessary {

// Names standard output in the place of a file.
inline constexpr std::wstring_view kStandardOutput = L"-";

struct ConsoleOptions {
    std::vector<std::wstring> inputs;  // names of files and folders
    std::wstring targetFolder;         // full path
    bool recursive = false;
    bool isQuiet = false;
    std::wstring reportFile;            // full path; empty: none; or kStandardOutput
    UINT codePage = ConsoleCodePage();  // of all text that does not go to a console
    // Whether the arguments limit this side.
    bool givesMinWidth = false;
    bool givesMinHeight = false;
};

// Whether an option without a value is among the arguments: behind `--` stand names only.
bool HoldsOption(const std::vector<std::wstring>& arguments, std::wstring_view option);

// The code page that `--encoding` names, for what is to be told before the arguments are understood
// and about them; the usual one where it names none.
UINT CodePageOf(const std::vector<std::wstring>& arguments);

// Takes the arguments apart. Those that stand for settings change Values(), whose stored ones thus
// hold where no argument says otherwise. Answers what is wrong with them, for the user; empty when
// nothing is.
std::wstring ParseOptions(const std::vector<std::wstring>& arguments, ConsoleOptions& options);

}  // namespace tessary
