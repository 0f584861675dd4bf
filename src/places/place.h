// A place that one can come back to: a picture, by where it lies.
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

struct Place {
    std::wstring file{};    // full path of the file, or of the archive around it
    std::wstring member{};  // of the archive, as it is listed; empty: the file itself
    uint32_t page = 0;      // from 1, of the file or the member; 0: it has none

    bool IsNone() const { return file.empty(); }
    bool operator==(const Place&) const = default;
};

// What a place is called: its file's name, with the member or the page behind it.
std::wstring NameOf(const Place& place);

// Such a name of the place within its file: the member's, the page's; empty when it is the file.
std::wstring InnerNameOf(const Place& place);

// As a text and back. Nothing (a Place that is none) is made of a text that is not of ToText.
std::wstring ToText(const Place& place);
Place PlaceOfText(const std::wstring& text);

// No longer than so many characters: what is left out in the middle is shown as "…". The end, from
// the last backslash on, stays whole as far as there is room. No pair of surrogates is torn.
std::wstring ShortenedPath(const std::wstring& path, size_t most);

}  // namespace tessary
