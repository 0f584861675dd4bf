// Where the user is among what he views.
#pragma once

#include <string>

#include "sequence/file_sequence.h"

namespace tessary {

// An entry's place among its likes. Of the archive's members while one is viewed, else of the
// files.
struct EntryPlace {
    bool isMember = false;  // or a page of the file
    int index = -1;         // -1: none of them is selected
    int count = 0;
    Spread seen{};  // with what is seen beside it, where it is an open book's

    bool operator==(const EntryPlace&) const = default;
};

EntryPlace SelectedPlace(const FileSequence& sequence);

// What people read of an entry and its place: "name — 12 / 300", and in an archive
// "archive — name — 3 / 24".
std::wstring PlaceText(const FileSequence& sequence, const EntryPlace& place);

// The same of what is shown: the selected entry, if that is of `shownPath`; else, for it is not
// listed any more, its name alone. Empty where nothing is shown.
std::wstring ShownPlaceText(const FileSequence& sequence, const std::wstring& shownPath);

}  // namespace tessary
