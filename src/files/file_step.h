// One file that was put into the recycle bin, renamed, moved or copied, and the way back.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "files/recycle_bin.h"
#include "plugin/file_stamp.h"

namespace tessary {

struct FileStep {
    std::wstring path;  // that it had before, full
    std::wstring now;   // that it has now; empty: it lies in the bin
    BinnedFile bin{};   // as what it lies there
    // What had its present name before, as it lies in the bin; without a path: nothing.
    BinnedFile replaced{};
    // It stays where it was, and what has the present name is its copy, as it was made.
    std::optional<FileStamp> copy{};
};

enum class Undone {
    kDone,
    kNotThere,  // where it was put there is none any more
    kOccupied,  // something else has its former name by now
    kChanged,   // the copy is not what it was
    kFailed,    // it is where it was put
};

struct UndoResult {
    Undone outcome = Undone::kFailed;
    DWORD error = ERROR_SUCCESS;  // the system's, of kFailed, if it has told one
    bool keepsReplaced = false;   // what it had replaced could not be put back
};

// Takes the file back to where it was, and what it had replaced; a copy goes into the bin, or where
// there is none for good, as long as the other one is still like it. Blocks, maybe for long.
UndoResult Undo(const FileStep& step);

}  // namespace tessary
