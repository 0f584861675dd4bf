// Files picked out of the file list, to be deleted from the disk or merely dropped from viewing.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "sequence/file_sequence.h"
#include "ui/control/file_deletion.h"

namespace tessary {

// What the delete list needs of the bar that it belongs to.
class DeleteListHost {
  public:
    // Uncovers the delete panel, or covers it again; both may come several times.
    virtual void SetPanelOpen(bool open) = 0;
    // Whether the user sees the panel when it is open.
    virtual bool IsPanelInSight() const = 0;
    virtual void ShowNote(const std::wstring& note) = 0;

    // Shows what has come to that place of the files: an entry there was removed.
    virtual void ShowInPlaceOf(int index) = 0;

    // What waits for the end of a load and is about the marked files is not wanted any more.
    virtual void ForgetDeletion() = 0;

    // Told what came into the recycle bin, to be undone.
    virtual void Remember(const std::vector<BinnedFile>& binned) = 0;

    // Runs the deletion with everything else out of the user's reach. The deletion tells which file
    // is done, and which of how many that was; false: the user or the program has no time for more.
    using DeletionNews = std::function<bool(const std::wstring& path, int32_t done, int32_t total)>;
    virtual void WhileDeleting(const std::function<void(const DeletionNews& tell)>& deletion) = 0;

  protected:
    ~DeleteListHost() = default;
};

class DeleteList {
  public:
    // Both must outlive this.
    DeleteList(FileSequence& sequence, DeleteListHost& host) : sequence_(sequence), host_(host) {}

    // Moves the file at that place of the sequence to the list, and shows the next one where it was
    // selected. Nothing for -1.
    void Mark(int index);

    // The same with all chosen files at once.
    void MarkChosen();

    // Moves files back to the end of the sequence.
    void PutBack(const std::wstring& path);
    void PutAllBack();
    // The same, when the user says yes.
    void AskToPutAllBack();

    // The files leave the list, and viewing with it.
    void DropAll();

    // Told that a picture was saved in that file.
    void FileSaved(const std::wstring& path);

    // Deletes the files as it is chosen (GeneralSettings::deleteFinally), when the user says yes:
    // those that were in the list then, from the last one to the first. He may break off at a file
    // that cannot be deleted, or has changed since it was marked, and at any time once it takes
    // long.
    void AskToDeleteAll();

    // Asked before the program ends; asks the user what is to become of the files. False: it goes
    // on.
    bool MayClose();

  private:
    std::optional<int> TryToDelete(const std::vector<std::wstring>& paths);
    void DeleteFromDisk(FileDeletion& deletion, const std::vector<std::wstring>& paths,
                        std::vector<std::wstring>& deleted,
                        const DeleteListHost::DeletionNews& tell);
    DeleteOutcome DeleteMarked(const std::wstring& path, FileDeletion& deletion);

    FileSequence& sequence_;
    DeleteListHost& host_;
    bool askingToClose_ = false;
};

}  // namespace tessary
