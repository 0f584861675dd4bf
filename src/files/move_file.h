// Giving files other names and places, and copying them. No file is ever seen half-written, and
// none is replaced that the caller does not name.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>

namespace tessary {

// What becomes of a file that has the target's name.
enum class InTheWay { kStays, kIsReplaced };

// Told how many bytes of how many are copied; false stops. Called on the thread that copies.
using CopyNews = std::function<bool(uint64_t done, uint64_t total)>;

// All answer the system's error, 0 for success; ERROR_FILE_EXISTS of a name that is in use,
// ERROR_CANCELLED of what was stopped, which has left everything as it was. Block while a file that
// others have open for a moment is waited for.

// Another name on the same volume, which may differ from the former in upper and lower case alone.
DWORD RenameFile(const std::wstring& path, const std::wstring& newPath);

// Moves a file, from one drive to another too; dates and attributes go along.
DWORD MoveWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell);

// Copies a file with its dates and attributes. It is written beside its place and gets its name
// when it is complete.
DWORD CopyWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell);

}  // namespace tessary
