// The console converter from its arguments to its exit status.
#pragma once

#include <string>
#include <vector>

namespace tessary {

constexpr int kExitAllConverted = 0;  // but for what the user's own filters leave out
constexpr int kExitSomeNot = 1;       // some file could not be converted, or the run was stopped
constexpr int kExitSetupError = 2;    // arguments, settings or the program's own parts

// `arguments` without the program's name. Answers the exit status.
int RunConsoleProgram(const std::vector<std::wstring>& arguments);

}  // namespace tessary
