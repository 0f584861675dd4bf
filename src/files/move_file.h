// Giving files other names and places, and copying them. No file is ever seen half-written, and
// none is replaced that the caller does not name.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>

#include "files/recycle_bin.h"

namespace tessary {

// What becomes of a file that has the target's name. It goes only when the one that takes its place
// is complete, and nothing but its move is left to be done.
enum class InTheWay {
    kStays,
    kIsBinned,    // ERROR_NOT_SUPPORTED where the bin does not take it
    kIsReplaced,  // for good
};

// Told how many bytes of how many are copied; false stops. Called on the thread that copies.
using CopyNews = std::function<bool(uint64_t done, uint64_t total)>;

// All answer the system's error, 0 for success; ERROR_FILE_EXISTS of a name that is in use,
// ERROR_CANCELLED of what was stopped, which has left everything as it was. Block while a file that
// others have open for a moment is waited for.

// Another name on the same volume, which may differ from the former in upper and lower case alone.
DWORD RenameFile(const std::wstring& path, const std::wstring& newPath);

// Moves a file, from one drive to another too, where it is copied and compared before it is
// deleted; dates and attributes go along. What is put into the bin is told in `binned`, if there is
// one.
DWORD MoveWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell, BinnedFile* binned = nullptr);

// Copies a file with its dates and attributes. It is written beside its place and gets its name
// when it is complete.
DWORD CopyWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell, BinnedFile* binned = nullptr);

// `target`, or the first of "name (2).ext", "name (3).ext" … that is not in use.
std::wstring FreeName(const std::wstring& target);

}  // namespace tessary
