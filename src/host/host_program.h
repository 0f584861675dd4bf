// The file of the program that host processes run.
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

// Why a file is not started as one (no_host.h); 0: it is ours, and of this very version. It is
// looked at, and nothing in it runs: another program would open windows of its own.
uint32_t WhyNoHostProgram(const std::wstring& path);

}  // namespace tessary
