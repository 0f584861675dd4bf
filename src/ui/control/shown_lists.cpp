#include "ui/control/shown_lists.h"

#include <algorithm>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"

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

EntryPicture FoundPicture(const ThumbEntry& entry) {
    const Thumb thumb = Ahead().Thumbs().Find(entry);
    switch (thumb.state) {
        case ThumbState::kComing:
            return {.state = EntryPicture::State::kComing};
        case ThumbState::kFailed:
            return {.state = EntryPicture::State::kFailed};
        case ThumbState::kThere:
            return {.state = EntryPicture::State::kThere,
                    .info = reinterpret_cast<const BITMAPINFO*>(thumb.picture->Info().data()),
                    .rows = thumb.picture->View().Bits().data(),
                    .owner = thumb.picture};
        default:
            return {};
    }
}

std::wstring ShownFiles::Text(int index) const {
    if (!IsThere(index)) return {};
    const std::wstring path = All().Text(index);
    if (Values().general.listText == kListPaths) return path;
    if (!isFolderKnown_) FindFolder();
    return path.substr(std::min(folder_, path.size()));
}

std::optional<ThumbEntry> ShownFiles::ThumbOf(int index) const {
    if (!IsThere(index)) return std::nullopt;
    const ListedFile& file = All().At(index);
    return ThumbEntry{{.path = file.path}, file.size, file.time};
}

std::optional<ThumbEntry> ShownMembers::ThumbOf(int index) const {
    if (!IsThere(index) || !sequence_.IsInArchive()) return std::nullopt;
    const ListedMember& member = All().At(index);
    if (!member.isPicture) return std::nullopt;
    return ThumbEntry{EntryOfMember(sequence_, index), member.size, member.time};
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
