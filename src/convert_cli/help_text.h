// What the console converter tells about itself.
#pragma once

#include <string>

namespace tessary {

// In Japanese, then in English.
std::wstring HelpText();

std::wstring VersionText();

}  // namespace tessary
