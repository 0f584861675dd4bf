// What a file's content says about its format.
#pragma once

#include <string>

namespace tessary {

// The pattern of the format that a file's first bytes show, as `*.PNG`; empty when they show none
// of those that are known.
std::wstring ContentPatternOf(const std::wstring& path);

}  // namespace tessary
