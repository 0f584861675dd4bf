#include "files/file_step.h"

#include "app/base/paths.h"
#include "app/base/text.h"
#include "files/delete_file.h"
#include "files/move_file.h"
#include "files/same_content.h"

namespace tessary {
namespace {

UndoResult Unbin(const FileStep& step) {
    switch (TakeOutOfBin(step.bin)) {
        case Unbinning::kDone:
            return {.outcome = Undone::kDone};
        case Unbinning::kNotThere:
            return {.outcome = Undone::kNotThere};
        case Unbinning::kOccupied:
            return {.outcome = Undone::kOccupied};
        default:
            return {.outcome = Undone::kFailed};
    }
}

// Some bins know their files by the names that they had: what the copy has replaced must not be
// taken for the copy then.
UndoResult RemoveCopy(const FileStep& step) {
    if (!PathExists(step.now)) return {.outcome = Undone::kNotThere};
    if (StampOf(step.now) != step.copy) return {.outcome = Undone::kChanged};
    const bool hasReplaced = !step.replaced.path.empty();
    const std::wstring copy = hasReplaced ? FreeName(step.now) : step.now;
    if (const DWORD error = RenameFile(step.now, copy)) return {.error = error};
    const BinResult binned = PutIntoBin(copy);
    if (binned.outcome == Binning::kDone || binned.outcome == Binning::kGone) {
        return {.outcome = Undone::kDone};
    }
    const bool isSpare = binned.outcome == Binning::kNoBin && HaveSameContent(step.path, copy);
    const DWORD error = isSpare ? DeleteForGood(copy) : binned.error;
    if (isSpare && error == ERROR_SUCCESS) return {.outcome = Undone::kDone};
    RenameFile(copy, step.now);
    return {.error = error};
}

UndoResult PutBack(const FileStep& step) {
    if (!EqualsIgnoreCase(step.path, step.now) && PathExists(step.path)) {
        return {.outcome = Undone::kOccupied};
    }
    if (step.now.empty()) return Unbin(step);
    if (!PathExists(step.now)) return {.outcome = Undone::kNotThere};
    // Another file may have taken its place just now.
    const DWORD error = EqualsIgnoreCase(step.path, step.now)
                            ? RenameFile(step.now, step.path)
                            : MoveWhole(step.now, step.path, InTheWay::kStays, {});
    if (error == ERROR_FILE_EXISTS) return {.outcome = Undone::kOccupied};
    return {.outcome = error == ERROR_SUCCESS ? Undone::kDone : Undone::kFailed, .error = error};
}

}  // namespace

UndoResult Undo(const FileStep& step) {
    UndoResult result = step.copy ? RemoveCopy(step) : PutBack(step);
    if (result.outcome == Undone::kDone && !step.replaced.path.empty()) {
        result.keepsReplaced = TakeOutOfBin(step.replaced) != Unbinning::kDone;
    }
    return result;
}

}  // namespace tessary
