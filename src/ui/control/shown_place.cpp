#include "ui/control/shown_place.h"

#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr wchar_t kDash[] = L" — ";

}  // namespace

EntryPlace SelectedPlace(const FileSequence& sequence) {
    const auto& members = sequence.Members();
    const bool isMember = sequence.IsInArchive() && !members.IsEmpty();
    const int index = isMember ? members.Cursor() : sequence.Files().Cursor();
    const int count = isMember ? members.Count() : sequence.Files().Count();
    return {isMember, index, count, sequence.SpreadHere(index)};
}

std::wstring PlaceText(const FileSequence& sequence, const EntryPlace& place) {
    if (place.index < 0) return {};
    const bool isSpread = place.seen.count > 1;
    const int first = isSpread ? place.seen.first : place.index;
    std::wstring number = std::to_wstring(first + 1);
    if (isSpread) number += L"-" + std::to_wstring(place.seen.Last() + 1);
    number += L" / " + std::to_wstring(place.count);
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
