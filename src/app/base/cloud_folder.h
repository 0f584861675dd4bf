// Folders whose files somebody else hears of.
#pragma once

#include <string>

namespace tessary {

// Whether what is written into a folder is sent to a cloud. Of clouds that do not tell the system,
// only the best-known one is found.
bool IsInCloud(const std::wstring& folder);

}  // namespace tessary
