#include "plugin/member_file_name.h"

#include <algorithm>

#include "app/base/file_name_rules.h"
#include "app/base/text.h"

namespace tessary {
namespace {

// A part of a path has at most 255 characters; a number and a longer extension may be added yet.
constexpr size_t kLongestPart = 240;
// A longer one is no extension worth keeping.
constexpr size_t kLongestExtension = 32;

// A name's extension with its dot; empty when there is none worth keeping.
std::wstring_view ExtensionOf(std::wstring_view name) {
    const size_t dot = name.rfind(L'.');
    if (dot == std::wstring_view::npos || name.size() - dot > kLongestExtension) return {};
    return name.substr(dot);
}

void CutEnd(std::wstring& part) {
    part.resize(part.find_last_not_of(L" .") + 1);
}

// Shortens before the extension; no pair of surrogates is torn.
void Shorten(std::wstring& part) {
    if (part.size() <= kLongestPart) return;
    const std::wstring extension(ExtensionOf(part));
    size_t length = kLongestPart - extension.size();
    if ((part[length - 1] & 0xFC00) == 0xD800) --length;
    part.resize(length);
    CutEnd(part);
    part += extension;
}

std::wstring SafePart(std::wstring_view original) {
    std::wstring part(original);
    std::replace_if(part.begin(), part.end(), IsForbiddenInName, L'_');
    CutEnd(part);
    if (part.empty()) part = L"_";
    if (NamesDevice(part)) part.insert(0, L"_");
    Shorten(part);
    return part;
}

}  // namespace

std::optional<std::wstring> SafeMemberName(std::wstring_view member) {
    if (member.size() >= 2 && member[1] == L':') member.remove_prefix(2);
    std::wstring name;
    bool endsInFile = false;
    for (;;) {
        const size_t end = std::min(member.find_first_of(L"\\/"), member.size());
        const std::wstring_view part = member.substr(0, end);
        endsInFile = !part.empty() && part != L"." && part != L"..";
        if (endsInFile) {
            if (!name.empty()) name += L'\\';
            name += SafePart(part);
        }
        if (end == member.size()) break;
        member.remove_prefix(end + 1);
    }
    return endsInFile ? std::optional(name) : std::nullopt;
}

std::optional<std::wstring> MemberFileNames::NameFor(std::wstring_view member) {
    std::optional<std::wstring> name = SafeMemberName(member);
    if (!name) return name;
    const auto [first, isNew] = given_.try_emplace(ToUpper(*name), 2);
    if (isNew) return name;
    uint32_t& next = first->second;
    const size_t extension = ExtensionOf(name->substr(name->rfind(L'\\') + 1)).size();
    for (;;) {
        std::wstring numbered = *name;
        numbered.insert(numbered.size() - extension, L" (" + std::to_wstring(next++) + L")");
        // A member may have that very name.
        if (given_.try_emplace(ToUpper(numbered), 2).second) return numbered;
    }
}

}  // namespace tessary
