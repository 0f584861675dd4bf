// What the user is to be told about the plug-ins, in sentences.
#pragma once

#include <string>
#include <vector>

namespace tessary {

// The plug-ins in whose calls earlier runs ended.
std::vector<std::wstring> InterruptedCallNotices();

// What the last loading has found amiss: plug-in folders that are away, no plug-in at all, calls
// that cannot be logged. Empty when all is well.
std::vector<std::wstring> LoadingNotices();

}  // namespace tessary
