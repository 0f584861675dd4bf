// What a plug-in tells about itself (GetPluginInfo): its name and its file patterns.
#pragma once

#include <string>

#include "plugin/file_patterns.h"
#include "plugin/susie_calls.h"

namespace tessary {

// The patterns of the even info numbers.
FilePatterns ReadFilePatterns(SusieCalls& calls);

// Info number 1.
std::wstring ReadProductName(SusieCalls& calls);

}  // namespace tessary
