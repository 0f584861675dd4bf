// Deleting a user's file, with the question what to do when that fails.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

enum class DeleteOutcome { kDeleted = 0, kAbort = 1, kIgnore = 2 };

// Deletes a file whatever its attributes; one that is gone already counts as deleted. When the
// system refuses, the user decides: abort, retry (asked again if it fails again) or ignore; the
// file's attributes are then as they were.
DeleteOutcome DeleteListedFile(const std::wstring& path);

// Why a file was not deleted, of what the system has answered to that: 0 when it was deleted by
// somebody else, kErrorProtectedFolder (helpers/files/refusal.h) of one in a protected folder, of
// which the system says that it is not there.
DWORD DeletionError(DWORD error, const std::wstring& path);

}  // namespace tessary
