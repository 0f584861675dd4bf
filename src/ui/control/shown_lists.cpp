#include "ui/control/shown_lists.h"

#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"

namespace tessary {
namespace {

bool BeginsWith(const std::wstring& path, std::wstring_view folder) {
    if (path.starts_with(folder)) return true;
    return path.size() >= folder.size() &&
           EqualsIgnoreCase(std::wstring_view(path).substr(0, folder.size()), folder);
}

// The folder above, with its backslash; empty above a drive or a server.
std::wstring_view Above(std::wstring_view folder) {
    if (!folder.empty()) folder.remove_suffix(1);
    const size_t separator = folder.rfind(L'\\');
    return separator == folder.npos ? std::wstring_view() : folder.substr(0, separator + 1);
}

}  // namespace

std::wstring ShownFiles::Text(int index) const {
    if (!IsThere(index)) return {};
    const std::wstring path = All().Text(index);
    if (Values().general.listText == kListPaths) return path;
    if (!isFolderKnown_) FindFolder();
    return path.substr(std::min(folder_, path.size()));
}

void ShownFiles::FindFolder() const {
    isFolderKnown_ = true;
    folder_ = 0;
    if (All().IsEmpty()) return;
    const std::wstring first = FolderOf(All().At(0).path);
    std::wstring_view folder = first;
    for (const ListedFile& file : All().All()) {
        while (!folder.empty() && !BeginsWith(file.path, folder))
            folder = Above(folder);
    }
    folder_ = folder.size();
}

}  // namespace tessary
