#include "sequence/deletion_marks.h"

#include <algorithm>

#include "app/base/file_identity.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

std::wstring EntryOf(const std::wstring& path) {
    const std::wstring full = FullPathOf(path);
    return IdentityOf(FolderOf(full)) + L'\\' + ToUpper(FileNameOf(full));
}

bool DeletionMarks::Mark(const std::wstring& path) {
    const std::wstring entry = EntryOf(path);
    const auto marks = All();
    if (std::any_of(marks.begin(), marks.end(),
                    [&](const DeletionMark& mark) { return mark.entry == entry; })) {
        return false;
    }
    Add({path, entry, IdentityOf(path), StampOf(path)});
    return true;
}

void DeletionMarks::Unmark(const std::wstring& path) {
    const int index = IndexOf(path);
    if (index >= 0) Remove(index);
}

bool DeletionMarks::HasChanged(const std::wstring& path) const {
    const int index = IndexOf(path);
    if (index < 0 || !PathExists(path)) return false;
    return At(index).stamp != StampOf(path) || At(index).file != IdentityOf(path);
}

std::wstring DeletionMarks::MarkOf(const std::wstring& path) const {
    if (IsEmpty()) return {};
    const std::wstring file = IdentityOf(path);
    for (const DeletionMark& mark : All()) {
        if (IdentityOf(mark.path) == file) return mark.path;
    }
    return {};
}

}  // namespace tessary
