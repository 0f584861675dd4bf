// Deleting a file for good.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// Deletes a file whatever its attributes; it keeps them where the system refuses. 0 when it is
// gone, also when it was gone before, else DeletionError.
DWORD DeleteForGood(const std::wstring& path);

// Why a file was not deleted, of what the system has answered to that: 0 when it was deleted by
// somebody else, kErrorProtectedFolder (helpers/files/refusal.h) of one in a protected folder, of
// which the system says that it is not there.
DWORD DeletionError(DWORD error, const std::wstring& path);

}  // namespace tessary
