// Making folders.
#pragma once

#include <string>

namespace tessary {

// Makes a folder with all that are missing above it. True when it is there afterwards, also for one
// that was there before, a drive's root or a network share. GetLastError tells why it is not
// (app/base/write_error.h).
bool MakeFolder(const std::wstring& folder);

}  // namespace tessary
