#include "convert/name_mask.h"

#include <algorithm>

namespace tessary {
namespace {

// Whether a list without its brackets holds a character.
bool ListHolds(std::wstring_view list, wchar_t character) {
    for (size_t i = 0; i < list.size(); ++i) {
        const bool isRange = i + 2 < list.size() && list[i + 1] == L'-';
        const wchar_t last = isRange ? list[i + 2] : list[i];
        if (list[i] <= character && character <= last) return true;
        if (isRange) i += 2;
    }
    return false;
}

// One element of a mask, other than `*`.
struct Element {
    enum class Kind { kCharacter, kAny, kDigit, kList, kNothing };

    Kind kind = Kind::kCharacter;
    size_t length = 1;  // in the mask
    wchar_t character = 0;
    std::wstring_view list;
    bool isNegated = false;

    bool Matches(wchar_t c) const {
        switch (kind) {
            case Kind::kAny:
                return true;
            case Kind::kDigit:
                return c >= L'0' && c <= L'9';
            case Kind::kList:
                return ListHolds(list, c) != isNegated;
            case Kind::kCharacter:
                return c == character;
            case Kind::kNothing:
                break;
        }
        return false;
    }
};

// The element at the start of `mask`, which is not empty.
Element ElementAt(std::wstring_view mask) {
    Element element;
    element.character = mask[0];
    if (mask[0] == L'?') element.kind = Element::Kind::kAny;
    if (mask[0] == L'#') element.kind = Element::Kind::kDigit;
    const size_t end = mask[0] == L'[' ? mask.find(L']') : std::wstring_view::npos;
    if (end == std::wstring_view::npos) return element;
    element.length = end + 1;
    element.list = mask.substr(1, end - 1);
    if (element.list == L"!") {
        element.character = L'!';
        return element;
    }
    element.kind = element.list.empty() ? Element::Kind::kNothing : Element::Kind::kList;
    element.isNegated = element.list.starts_with(L'!');
    if (element.isNegated) element.list.remove_prefix(1);
    return element;
}

}  // namespace

bool MatchesNameMask(std::wstring_view name, std::wstring_view mask) {
    constexpr size_t kNone = std::wstring_view::npos;
    // Only the last `*` has to be tried again: what an earlier one swallowed never needs to grow.
    size_t n = 0;
    size_t m = 0;
    size_t afterStar = kNone;
    size_t starName = 0;
    for (;;) {
        if (m < mask.size() && mask[m] == L'*') {
            afterStar = ++m;
            starName = n;
            continue;
        }
        if (m < mask.size()) {
            const Element element = ElementAt(mask.substr(m));
            if (element.kind == Element::Kind::kNothing) {
                m += element.length;
                continue;
            }
            if (n < name.size() && element.Matches(name[n])) {
                m += element.length;
                ++n;
                continue;
            }
        } else if (n == name.size()) {
            return true;
        }
        if (afterStar == kNone || starName >= name.size()) return false;
        m = afterStar;
        n = ++starName;
    }
}

}  // namespace tessary
