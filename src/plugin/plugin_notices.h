// What the user is to be told about the plug-ins, in sentences.
#pragma once

#include <string>
#include <vector>

namespace tessary {

// The plug-ins in whose calls earlier runs ended.
std::vector<std::wstring> InterruptedCallNotices();

// The plug-ins that are left out because they kept ending earlier runs, but for those that
// InterruptedCallNotices tells of.
std::vector<std::wstring> BarredNotices();

// What the last loading has found amiss: plug-in folders that are away, no plug-in at all, plug-ins
// that crashed, calls that cannot be logged. Empty when all is well.
std::vector<std::wstring> LoadingNotices();

}  // namespace tessary
