#include "sequence/file_sequence.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

void FileSequence::Clear() {
    files_.Clear();
    LeaveArchive();
    marks_.Clear();
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

// --- Stepping ---

StepTarget FileSequence::Find(int steps, bool inArchive, KindSource& kinds) const {
    StepTarget target;
    if (inArchive && !members_.IsEmpty()) target.member = FindMember(steps);
    target.leavesArchive = steps != 0;
    if (target.leavesArchive) FindFile(steps, kinds, target);
    return target;
}

// Leaves the steps that lead beyond the members.
std::optional<int> FileSequence::FindMember(int& steps) const {
    const int start = std::max(members_.Cursor(), steps > 0 ? -1 : 0);
    const int member = std::clamp(start + steps, 0, members_.Count() - 1);
    steps -= member - start;
    return member == start ? std::nullopt : std::optional(member);
}

void FileSequence::FindFile(int steps, KindSource& kinds, StepTarget& target) const {
    const int step = steps > 0 ? 1 : -1;
    const int start = files_.Cursor();
    const int last = files_.Count() - 1;
    if (step > 0 ? start >= last : start < 0) return;
    int reached = start;
    for (; steps != 0; steps -= step) {
        const std::optional<int> found = FindKnown(reached + step, step, kinds);
        if (!found) return;
        if (*found < 0 || *found > last) break;
        reached = *found;
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
        if (kinds.IsKnown(files_.Text(index))) break;
        if (!kinds.GoesOn(index, std::abs(index - start), total)) return std::nullopt;
    }
    return index;
}

// --- Deletion ---

bool FileSequence::MarkFile(int index) {
    const bool isNew = marks_.Mark(files_.Text(index));
    files_.Remove(index);
    return isNew;
}

void FileSequence::PutBack(const std::wstring& path) {
    std::wstring moved = path;  // it may be the mark's own
    marks_.Unmark(moved);
    files_.Add({std::move(moved)});
}

void FileSequence::PutAllBack() {
    files_.Expect(marks_.All().size());
    for (const DeletionMark& mark : marks_.All())
        files_.Add({mark.path});
    marks_.Clear();
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
