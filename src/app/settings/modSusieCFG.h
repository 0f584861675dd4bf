// The Susie viewer's own settings, as far as this program uses them.
#pragma once

#include <string>

namespace tessary {

// The Susie viewer's plug-in folder with a trailing backslash, or empty when that viewer is not set
// up.
std::wstring GetSusiePluginFolder();

}  // namespace tessary
