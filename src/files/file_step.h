// One file that was put into the recycle bin, renamed or moved, and the way back.
#pragma once

#include <windows.h>

#include <string>

#include "files/recycle_bin.h"

namespace tessary {

struct FileStep {
    std::wstring path;  // that it had before, full
    std::wstring now;   // that it has now; empty: it lies in the bin
    BinnedFile bin{};   // as what it lies there
};

enum class Undone {
    kDone,
    kNotThere,  // where it was put there is none any more
    kOccupied,  // something else has its former name by now
    kFailed,    // it is where it was put
};

struct UndoResult {
    Undone outcome = Undone::kFailed;
    DWORD error = ERROR_SUCCESS;  // the system's, of kFailed, if it has told one
};

// Takes the file back to where it was. Blocks, maybe for long.
UndoResult Undo(const FileStep& step);

}  // namespace tessary
