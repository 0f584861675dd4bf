#include "sequence/file_sequence.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "picture/read/arrangement.h"

namespace tessary {

void FileSequence::Clear() {
    ClearFiles();
    LeaveArchive();
    marks_.Clear();
}

void FileSequence::ClearFiles() {
    files_.Clear();
    chosenStay_ = false;
    dropped_.clear();
}

void FileSequence::FileWritten(const std::wstring& path) {
    const int index = files_.IndexOf(path);
    if (index < 0) return;
    ListedFile file = files_.At(index);
    const FoundFile written = NamedFileOf(path);
    file.size = written.size;
    file.time = written.time;
    files_.Update(index, std::move(file));
}

void FileSequence::SetMembers(std::span<const ListedMember> members) {
    members_.Clear();
    members_.Expect(members.size());
    for (const ListedMember& member : members)
        members_.Add(member);
}

void FileSequence::EnterPages(const std::wstring& path, uint32_t count) {
    members_.Clear();
    members_.Expect(count);
    for (uint32_t page = 1; page <= count; ++page)
        members_.Add({std::to_wstring(page) + L" ページ", static_cast<int32_t>(page)});
    archive_ = path;
    hasPages_ = true;
}

void FileSequence::LeaveArchive() {
    archive_.clear();
    hasPages_ = false;
    members_.Clear();
}

// --- As a book ---

void FileSequence::OpenAsBook(bool isOpen, bool coverIsAlone) {
    isBook_ = isOpen;
    coverIsAlone_ = coverIsAlone;
}

Spreads& FileSequence::MemberSpreads() const {
    memberSpreads_.Follow(members_.Revision(), members_.Count(), coverIsAlone_);
    return memberSpreads_;
}

Spreads& FileSequence::FileSpreads() const {
    fileSpreads_.Follow(files_.Revision(), files_.Count(), coverIsAlone_);
    return fileSpreads_;
}

Spread FileSequence::SpreadHere(int index) const {
    if (!isBook_ || index < 0) return {index, 1};
    return IsInArchive() ? MemberSpreads().At(index) : FileSpreads().At(index);
}

int FileSequence::MemberEdge(int index, int step) const {
    return isBook_ && index >= 0 ? EdgeOf(MemberSpreads().At(index), step) : index;
}

// An archive among the files lies beside none.
int FileSequence::FileEdge(int index, int step) const {
    if (!isBook_ || index < 0 || (IsInArchive() && index == files_.Cursor())) return index;
    return EdgeOf(FileSpreads().At(index), step);
}

// --- Stepping ---

StepTarget FileSequence::Find(int steps, bool inArchive, bool goesRound, KindSource& kinds) const {
    StepTarget target;
    if (inArchive) target = FindInArchive(steps);
    target.leavesArchive = steps != 0;
    if (target.leavesArchive) FindFile(steps, goesRound, kinds, target);
    return target;
}

StepTarget FileSequence::FindInArchive(int& steps) const {
    StepTarget target;
    if (!members_.IsEmpty()) target.member = FindMember(steps);
    target.leavesArchive = steps != 0;
    return target;
}

// Leaves the steps that lead beyond the members.
std::optional<int> FileSequence::FindMember(int& steps) const {
    const int step = steps > 0 ? 1 : -1;
    const int start = std::max(members_.Cursor(), steps > 0 ? -1 : 0);
    int reached = start;
    int at = MemberEdge(start, step) + step;
    while (steps != 0 && at >= 0 && at < members_.Count()) {
        if (members_.At(at).isWanted) {
            reached = at;
            at = MemberEdge(at, step);
            steps -= step;
        }
        at += step;
    }
    return reached == start ? std::nullopt : std::optional(reached);
}

void FileSequence::FindFile(int steps, bool goesRound, KindSource& kinds,
                            StepTarget& target) const {
    const int step = steps > 0 ? 1 : -1;
    const int start = files_.Cursor();
    const int last = files_.Count() - 1;
    if (!goesRound && (step > 0 ? FileEdge(start, step) >= last : start < 0)) return;
    int reached = start;
    for (; steps != 0; steps -= step) {
        std::optional<int> found = FindKnown(FileEdge(reached, step) + step, step, kinds);
        if (found && goesRound && (*found < 0 || *found > last) && last >= 0) {
            found = FindKnown(step > 0 ? 0 : last, step, kinds);
            target.wentRound = true;
        }
        if (!found) return;
        if (*found < 0 || *found > last) break;
        reached = *found;
        // How many entries it has shows when it is opened.
        if (steps != step && kinds.IsArchive(files_.Text(reached))) {
            target.left = steps - step;
            break;
        }
    }
    target.isKnown = reached != start;
    if (target.isKnown) {
        target.file = reached;
    } else if (!target.member) {
        target.file = step > 0 ? last : -1;
    }
}

// The first file of known kind from `start` on; the index behind the end or -1 when there is none;
// nothing when the search was ended.
std::optional<int> FileSequence::FindKnown(int start, int step, KindSource& kinds) const {
    const int total = step > 0 ? files_.Count() - start : start + 1;
    int index = start;
    for (; index >= 0 && index < files_.Count(); index += step) {
        const bool isWanted = files_.At(index).isWanted;
        if (isWanted && kinds.IsKnown(files_.Text(index))) break;
        // What is passed by unseen takes no time.
        if (isWanted && !kinds.GoesOn(index, std::abs(index - start), total)) return std::nullopt;
    }
    return index;
}

void FileSequence::SortBy(const EntryOrder& order) {
    std::vector<ListedFile> files(files_.All().begin(), files_.All().end());
    const std::wstring file = files_.Current();
    tessary::SortBy(order, files);
    files_.Assign(std::move(files), -1);
    files_.SetCursor(files_.IndexOf(file));
    if (hasPages_ || members_.IsEmpty()) return;
    std::vector<ListedMember> members(members_.All().begin(), members_.All().end());
    const int selected = members_.Cursor();
    const int32_t position = selected < 0 ? 0 : members_.At(selected).position;
    tessary::SortBy(order, members);
    const auto found = std::ranges::find(members, position, &ListedMember::position);
    const auto place = found == members.end() ? -1 : found - members.begin();
    members_.Assign(std::move(members), static_cast<int>(place));
}

bool FileSequence::IsInOrder(const EntryOrder& order) const {
    std::vector<ListedFile> files(files_.All().begin(), files_.All().end());
    tessary::SortBy(order, files);
    return std::ranges::equal(files, files_.All(), {}, &ListedFile::path, &ListedFile::path);
}

void FileSequence::PutIn(ListedFile file, int index) {
    std::vector<ListedFile> files(files_.All().begin(), files_.All().end());
    const int place = index < 0 || index > files_.Count() ? files_.Count() : index;
    const int cursor = files_.Cursor() >= place ? files_.Cursor() + 1 : files_.Cursor();
    files.insert(files.begin() + place, std::move(file));
    files_.Assign(std::move(files), cursor);
}

void FileSequence::Rename(const std::wstring& path, const std::wstring& newPath) {
    std::vector<ListedFile> files(files_.All().begin(), files_.All().end());
    for (ListedFile& file : files) {
        if (file.path == path) file.path = newPath;
    }
    files_.Assign(std::move(files), files_.Cursor());
    if (archive_ == path) archive_ = newPath;
}

// --- The chosen files ---

std::vector<std::wstring> FileSequence::Chosen() const {
    if (files_.ChosenCount() > 0) return files_.ChosenTexts();
    return files_.Cursor() < 0 ? std::vector<std::wstring>() : std::vector{files_.Current()};
}

void FileSequence::ChooseForNow(std::span<const int> indexes) {
    if (files_.ChosenCount() == 0) chosenStay_ = false;
    files_.Choose(indexes);
}

void FileSequence::ToggleMark(int index) {
    if (!HasMarks()) files_.Choose({});
    chosenStay_ = true;
    files_.SetChosen(index, !files_.IsChosen(index));
}

void FileSequence::GoOn() {
    if (!HasMarks()) ForgetChosen();
}

bool FileSequence::ForgetChosen() {
    chosenStay_ = false;
    if (files_.ChosenCount() == 0) return false;
    files_.Choose({});
    return true;
}

void FileSequence::Replace(std::vector<ListedFile> files, int cursor) {
    std::vector<std::wstring> renamed;
    if (files_.ChosenCount() > 0) {
        std::unordered_set<std::wstring_view> known, there;
        for (const ListedFile& file : files_.All())
            known.insert(file.path);
        for (const ListedFile& file : files)
            there.insert(file.path);
        std::set<std::pair<uint64_t, uint64_t>> gone;
        for (const int index : files_.ChosenIndexes()) {
            const ListedFile& file = files_.At(index);
            if (!there.contains(file.path)) gone.insert({file.size, file.time});
        }
        for (const ListedFile& file : files) {
            if (!known.contains(file.path) && gone.erase({file.size, file.time}) > 0) {
                renamed.push_back(file.path);
            }
        }
    }
    files_.Assign(std::move(files), cursor);
    files_.ChooseTexts(renamed);
}

// --- Deletion ---

bool FileSequence::MarkFile(int index) {
    const bool isNew = marks_.Mark(files_.Text(index));
    files_.Remove(index);
    return isNew;
}

int FileSequence::MarkFiles(std::span<const int> indexes) {
    std::vector<ListedFile> left;
    left.reserve(static_cast<size_t>(files_.Count()) - indexes.size());
    int marked = 0;
    int cursor = files_.Cursor();
    auto next = indexes.begin();
    for (int i = 0; i < files_.Count(); ++i) {
        if (next == indexes.end() || *next != i) {
            if (i == files_.Cursor()) cursor = static_cast<int>(left.size());
            left.push_back(files_.At(i));
            continue;
        }
        ++next;
        if (i == files_.Cursor()) cursor = -1;
        if (marks_.Mark(files_.Text(i))) ++marked;
    }
    files_.Assign(std::move(left), cursor);
    return marked;
}

// At the end, in whatever order.
void FileSequence::Append(const std::wstring& path) {
    const FoundFile file = NamedFileOf(path);
    files_.Add({path, file.size, file.time, static_cast<uint32_t>(files_.Count())});
}

void FileSequence::PutBack(const std::wstring& path) {
    std::wstring moved = path;  // it may be the mark's own
    marks_.Unmark(moved);
    Append(moved);
}

void FileSequence::PutAllBack() {
    files_.Expect(marks_.All().size());
    for (const DeletionMark& mark : marks_.All())
        Append(mark.path);
    marks_.Clear();
}

void FileSequence::DropMarks() {
    for (const DeletionMark& mark : marks_.All())
        dropped_.insert(mark.path);
    marks_.Clear();
}

void FileSequence::LeaveOut(std::vector<ListedFile>& files) const {
    if (dropped_.empty() && marks_.IsEmpty()) return;
    std::unordered_set<std::wstring> out = dropped_;
    for (const DeletionMark& mark : marks_.All())
        out.insert(mark.path);
    std::erase_if(files, [&](const ListedFile& file) { return out.contains(file.path); });
}

std::vector<ListedFile>::iterator FileSequence::RenamedAmong(std::vector<ListedFile>& files) const {
    if (files_.Cursor() < 0) return files.end();
    const ListedFile& former = files_.At(files_.Cursor());
    std::unordered_set<std::wstring_view> known;
    for (const ListedFile& file : files_.All())
        known.insert(file.path);
    return std::ranges::find_if(files, [&](const ListedFile& file) {
        return file.size == former.size && file.time == former.time && !known.contains(file.path);
    });
}

std::optional<int> FileSequence::RemoveDeleted(const std::vector<std::wstring>& deleted) {
    std::set<std::wstring> names;  // asking the system of every file listed would take too long
    std::set<std::wstring> entries;
    for (const std::wstring& path : deleted) {
        names.insert(ToUpper(FileNameOf(path)));
        entries.insert(EntryOf(path));
    }
    const int selected = files_.Cursor();
    std::optional<int> gap;
    for (int i = files_.Count() - 1; i >= 0 && !names.empty(); --i) {
        const std::wstring path = files_.Text(i);
        if (!names.contains(ToUpper(FileNameOf(path))) || !entries.contains(EntryOf(path))) {
            continue;
        }
        files_.Remove(i);
        if (i == selected) gap = i;
        if (gap && i < selected) --*gap;
    }
    return gap;
}

}  // namespace tessary
