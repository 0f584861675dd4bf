// The console converter from its arguments to its exit status.
#pragma once

#include <string>
#include <vector>

namespace tessary {

constexpr int kExitAllConverted = 0;  // but for what the user's own filters leave out
constexpr int kExitSomeNot = 1;       // a file could not be converted, read whole or found
constexpr int kExitSetupError = 2;    // arguments, settings, folders, plug-ins, log or report
constexpr int kExitStopped = 3;       // by Ctrl+C or the like

// `arguments` without the program's name. Answers the exit status.
int RunConsoleProgram(const std::vector<std::wstring>& arguments);

}  // namespace tessary
