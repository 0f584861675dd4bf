#include "files/file_step.h"

#include "app/base/paths.h"
#include "app/base/text.h"
#include "files/move_file.h"

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

}  // namespace

UndoResult Undo(const FileStep& step) {
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

}  // namespace tessary
