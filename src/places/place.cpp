#include "places/place.h"

#include <algorithm>
#include <cwchar>

#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr wchar_t kBetween = L'|';  // no path has it; a member may, which comes last

bool IsTorn(const std::wstring& text, size_t at) {
    return at > 0 && at < text.size() && text[at] >= 0xDC00 && text[at] <= 0xDFFF;
}

}  // namespace

std::wstring InnerNameOf(const Place& place) {
    std::wstring name = FileNameOf(place.member);
    if (place.page > 0 && (place.page > 1 || name.empty())) {
        if (!name.empty()) name += L' ';
        name += std::to_wstring(place.page) + L" ページ";
    }
    return name;
}

std::wstring NameOf(const Place& place) {
    const std::wstring inner = InnerNameOf(place);
    const std::wstring file = FileNameOf(RemoveBackslash(place.file));
    return inner.empty() ? file : file + L" - " + inner;
}

std::wstring ToText(const Place& place) {
    return place.file + kBetween + std::to_wstring(place.page) + kBetween + place.member;
}

Place PlaceOfText(const std::wstring& text) {
    const size_t page = text.find(kBetween);
    const size_t member = page == text.npos ? page : text.find(kBetween, page + 1);
    if (member == text.npos) return {};
    Place place{text.substr(0, page), text.substr(member + 1),
                static_cast<uint32_t>(std::wcstoul(text.c_str() + page + 1, nullptr, 10))};
    return ToText(place) == text ? place : Place();
}

std::wstring ShortenedPath(const std::wstring& path, size_t most) {
    if (path.size() <= most || most < 3) return path;
    const size_t room = most - 1;
    // A folder's own name counts, not the backslash behind it.
    const size_t last = path.find_last_of(L'\\', path.size() - 2);
    const size_t name = last == path.npos ? path.size() : path.size() - last;
    size_t tail = std::max(room / 2, std::min(name, room * 3 / 4));
    size_t head = room - tail;
    if (IsTorn(path, head)) --head;
    if (IsTorn(path, path.size() - tail)) --tail;
    return path.substr(0, head) + L'…' + path.substr(path.size() - tail);
}

}  // namespace tessary
