// The files being viewed, as a model without a window: their order, which of them is selected, the
// members of the archive among them, and what is marked for deletion. Lists on the screen mirror
// it; what goes through the files works on it.
//
// It opens no file and asks no plug-in: what a file is comes from a KindSource. It keeps no kinds,
// for files change.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "app/base/entry_order.h"
#include "picture/read/listed_file.h"
#include "plugin/archive_members.h"
#include "sequence/deletion_marks.h"
#include "sequence/entry_list.h"
#include "sequence/spreads.h"

namespace tessary {

// Tells what files are to a search for the next one that can be shown.
class KindSource {
  public:
    // Whether the file is of known kind. May take long, and handle messages.
    virtual bool IsKnown(const std::wstring& path) = 0;

    // Whether the file is an archive, by its name; takes no time.
    virtual bool IsArchive(const std::wstring& path) = 0;

    // Told behind each file of unknown kind: its index, and how many of how many files from where
    // the search began it lies away. False ends the search.
    virtual bool GoesOn(int index, int done, int total) = 0;

  protected:
    ~KindSource() = default;
};

// Where a number of steps leads to. Both are set when the way ends in the archive at the member, or
// in the file behind it.
struct StepTarget {
    std::optional<int> member;   // to select when there is no file to go on to
    std::optional<int> file;     // to select; -1: the selection is to go
    bool isKnown = false;        // the file is of known kind, and not just where the list ends
    bool leavesArchive = false;  // the members do not take all the steps
    bool wentRound = false;      // the way to the file leads over an end of the list
    int left = 0;  // of the steps, where the file is an archive: they lead through its members
};

class FileSequence {
  public:
    using FileEntries = EntryList<ListedFile, &ListedFile::path>;
    using MemberEntries = EntryList<ListedMember, &ListedMember::name>;

    FileEntries& Files() { return files_; }
    const FileEntries& Files() const { return files_; }
    MemberEntries& Members() { return members_; }
    const MemberEntries& Members() const { return members_; }
    DeletionMarks& Marks() { return marks_; }
    const DeletionMarks& Marks() const { return marks_; }

    // Forgets all of it; and the files, for a list of others.
    void Clear();
    void ClearFiles();
    // A file was written by this program: what is known of it is as it is now.
    void FileWritten(const std::wstring& path);

    // --- The archive ---
    // Takes the members that an archive has, in the order in which they are listed.
    void SetMembers(std::span<const ListedMember> members);
    // From now on the members are the selected file's, and steps go through them.
    void EnterArchive(const std::wstring& path) { archive_ = path; }
    // The same for a file with so many pages, which are listed in place of members.
    void EnterPages(const std::wstring& path, uint32_t count);
    bool HasPages() const { return hasPages_; }
    // No archive is being viewed; there are no members.
    void LeaveArchive();
    // The full path of the archive that is being viewed, or of the file with pages; empty: none.
    const std::wstring& Archive() const { return archive_; }
    bool IsInArchive() const { return !archive_.empty(); }

    // --- As a book ---
    // Whether entries lie side by side; then steps go from spread to spread.
    void OpenAsBook(bool isOpen, bool coverIsAlone);
    bool IsOpenAsBook() const { return isBook_; }
    // Of the members while the archive is viewed, else of the files; to be asked anew whenever
    // those may have changed.
    Spreads& SpreadsHere() { return IsInArchive() ? MemberSpreads() : FileSpreads(); }
    // What is seen of them at once when the entry of this index is shown.
    Spread SpreadHere(int index) const;

    // --- Stepping ---
    // Where so many steps lead to (negative: back), through the members first where `inArchive`,
    // then through the files, leaving out those of unknown kind. They stop at the last one of known
    // kind, or go on from the other end where `goesRound`. Beyond that, from it, lies the last
    // file, or no selection before the first.
    StepTarget Find(int steps, bool inArchive, bool goesRound, KindSource& kinds) const;

    // The same among the members alone: those that the steps lead to, which are left in `steps`
    // where the members do not take them all.
    StepTarget FindInArchive(int& steps) const;

    // Puts the files, and the members but for pages, into that order; the selected ones stay so.
    void SortBy(const EntryOrder& order);

    // Whether the files are in that order.
    bool IsInOrder(const EntryOrder& order) const;

    // Puts a file to that place, or to the end (-1); the selected one stays so.
    void PutIn(ListedFile file, int index);
    // A file has another path now.
    void Rename(const std::wstring& path, const std::wstring& newPath);

    // --- The chosen files ---
    // What a command is for: the full paths of the chosen files, in the order of the list, or where
    // there are none that of the selected file. Empty: there is neither.
    std::vector<std::wstring> Chosen() const;
    // Chooses these and no others, for the moment; beside those that the user has marked.
    void ChooseForNow(std::span<const int> indexes);
    // Chooses a file, or no longer, by a mark: from now on the chosen ones stay.
    void ToggleMark(int index);
    bool HasMarks() const { return chosenStay_ && files_.ChosenCount() > 0; }
    // The user goes on to another file: chosen are only those that he has marked.
    void GoOn();
    // None is chosen any more; false when none was.
    bool ForgetChosen();

    // Takes the files of a folder as they are now in place of all others, with the cursor there.
    // Chosen ones stay so, also those that have become another name with the same size and time.
    void Replace(std::vector<ListedFile> files, int cursor);

    // --- Deletion ---
    // Moves a file to the marks; false when it is marked already, and only leaves the files.
    bool MarkFile(int index);
    // Moves these, in ascending order; the cursor goes when it is among them. Answers how many were
    // not marked already.
    int MarkFiles(std::span<const int> indexes);
    // Moves a mark to the end of the files; and all of them.
    void PutBack(const std::wstring& path);
    void PutAllBack();
    // Forgets the marks; their files are not listed again for whatever becomes of their folder.
    void DropMarks();
    // Takes out of the files of a folder what is marked, or was dropped.
    void LeaveOut(std::vector<ListedFile>& files) const;
    // The one of these files, in place of all that are listed, that the selected one has become: it
    // was not listed, and has the size and the time that the selected one had. The end: none.
    std::vector<ListedFile>::iterator RenamedAmong(std::vector<ListedFile>& files) const;

    // Takes out what leads to deleted files, in whatever spelling. Answers the place of the
    // selected file when it is among them.
    std::optional<int> RemoveDeleted(const std::vector<std::wstring>& deleted);

  private:
    void Append(const std::wstring& path);
    std::optional<int> FindMember(int& steps) const;
    void FindFile(int steps, bool goesRound, KindSource& kinds, StepTarget& target) const;
    std::optional<int> FindKnown(int start, int step, KindSource& kinds) const;
    Spreads& MemberSpreads() const;
    Spreads& FileSpreads() const;
    static int EdgeOf(const Spread& spread, int step) {
        return step > 0 ? spread.Last() : spread.first;
    }
    int MemberEdge(int index, int step) const;
    int FileEdge(int index, int step) const;

    FileEntries files_;
    MemberEntries members_;
    DeletionMarks marks_;
    std::wstring archive_;
    bool hasPages_ = false;
    bool chosenStay_ = false;                   // the user has marked some of those that are chosen
    std::unordered_set<std::wstring> dropped_;  // paths
    bool isBook_ = false;
    bool coverIsAlone_ = true;
    mutable Spreads fileSpreads_;  // they follow the lists when they are asked
    mutable Spreads memberSpreads_;
};

}  // namespace tessary
