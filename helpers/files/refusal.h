// Why the system does not let a file be written, where its own answer does not tell.
#pragma once

#include <windows.h>

#include <string>

#include "helpers/files/file_calls.h"

namespace tessary::files {

// What TellingError answers where a security feature keeps programs that it does not know from
// writing into a folder, as the controlled folder access of Windows does. A drive that is mounted
// for reading only looks the same where the system does not call it write-protected.
constexpr DWORD kErrorProtectedFolder = ERROR_ACCESS_DISABLED_BY_POLICY;

// The system's error of a file or folder that could not be created, or another one that tells more:
// a protected folder is said to lack the file that was to be created, or denies access to somebody
// who has it. `name` in the form of ExtendedFullName.
DWORD TellingError(DWORD error, const std::wstring& name, FileCalls& calls = SystemFileCalls());

// Whether new files may be created in a folder as far as its access control list goes; it is not
// tried. `folder` in the form of ExtendedFullName, with its backslash.
bool MayAddFiles(const std::wstring& folder, FileCalls& calls = SystemFileCalls());

// Of a file that cannot be replaced: whether that is because another program has it open, or has
// deleted it and not closed it yet; otherwise it is a matter of rights.
bool IsInUse(const std::wstring& name, FileCalls& calls = SystemFileCalls());

}  // namespace tessary::files
