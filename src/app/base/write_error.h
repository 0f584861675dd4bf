// Why something could not be written, for the user.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace tessary {

// The system's last error of a file or folder that could not be created, opened for writing or
// deleted, or another one that tells more (helpers/files/refusal.h).
DWORD LastWriteError(std::wstring_view path);

// A sentence or two with the reason, and what helps where that is not plain; unknown ones in the
// system's own words, with their number. Empty for ERROR_SUCCESS.
std::wstring WriteErrorText(DWORD error);

}  // namespace tessary
