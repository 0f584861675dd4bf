#include "ui/control/shown_place.h"

#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr wchar_t kDash[] = L" — ";

}  // namespace

EntryPlace SelectedPlace(const FileSequence& sequence) {
    const auto& members = sequence.Members();
    if (sequence.IsInArchive() && !members.IsEmpty()) {
        return {.isMember = true, .index = members.Cursor(), .count = members.Count()};
    }
    return {.index = sequence.Files().Cursor(), .count = sequence.Files().Count()};
}

std::wstring PlaceText(const FileSequence& sequence, const EntryPlace& place) {
    if (place.index < 0) return {};
    const std::wstring number =
        std::to_wstring(place.index + 1) + L" / " + std::to_wstring(place.count);
    if (!place.isMember) return FileNameOf(sequence.Files().Text(place.index)) + kDash + number;
    const std::wstring archive = FileNameOf(sequence.Archive()) + kDash;
    if (sequence.HasPages()) return archive + number + L" ページ";
    return archive + FileNameOf(sequence.Members().Text(place.index)) + kDash + number;
}

std::wstring ShownPlaceText(const FileSequence& sequence, const std::wstring& shownPath) {
    if (shownPath.empty()) return {};
    const EntryPlace place = SelectedPlace(sequence);
    const bool isSelected =
        place.index >= 0 &&
        (place.isMember ? sequence.Archive() : sequence.Files().Current()) == shownPath;
    return isSelected ? PlaceText(sequence, place) : FileNameOf(shownPath);
}

}  // namespace tessary
