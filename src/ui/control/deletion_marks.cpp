#include "ui/control/deletion_marks.h"

#include <algorithm>

#include "app/base/file_identity.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

std::wstring EntryOf(const std::wstring& path) {
    const std::wstring full = FullPathOf(path);
    return IdentityOf(FolderOf(full)) + L'\\' + ToUpper(FileNameOf(full));
}

bool DeletionMarks::Add(const std::wstring& path) {
    const std::wstring entry = EntryOf(path);
    if (std::any_of(marks_.begin(), marks_.end(),
                    [&](const auto& mark) { return mark.second.entry == entry; })) {
        return false;
    }
    marks_[path] = {entry, IdentityOf(path), StampOf(path)};
    return true;
}

bool DeletionMarks::HasChanged(const std::wstring& path) const {
    const auto mark = marks_.find(path);
    if (mark == marks_.end() || !PathExists(path)) return false;
    return mark->second.stamp != StampOf(path) || mark->second.file != IdentityOf(path);
}

std::wstring DeletionMarks::MarkOf(const std::wstring& path) const {
    const std::wstring file = IdentityOf(path);
    for (const auto& mark : marks_) {
        if (IdentityOf(mark.first) == file) return mark.first;
    }
    return {};
}

}  // namespace tessary
