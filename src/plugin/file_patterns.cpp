#include "plugin/file_patterns.h"

#include <algorithm>

#include "app/base/text.h"

namespace tessary {
namespace {

std::wstring AsWildcard(std::wstring_view piece) {
    if (piece.find_first_of(L"*?") != std::wstring_view::npos) return std::wstring(piece);
    if (piece.front() == L'.') return L"*" + std::wstring(piece);
    if (piece.find(L'.') == std::wstring_view::npos) return L"*." + std::wstring(piece);
    return std::wstring(piece);
}

}  // namespace

void AppendPatterns(std::wstring_view upperText, FilePatterns& patterns) {
    while (!upperText.empty() && patterns.size() < kMaxPatterns) {
        const size_t end = std::min(upperText.find(L';'), upperText.size());
        const std::wstring_view piece = TrimSpaces(upperText.substr(0, end));
        if (!piece.empty()) patterns.push_back(AsWildcard(piece));
        upperText.remove_prefix(std::min(end + 1, upperText.size()));
    }
}

bool MatchesAnyPattern(std::wstring_view upperName, const FilePatterns& patterns) {
    return !upperName.empty() && std::ranges::any_of(patterns, [&](const std::wstring& pattern) {
        return pattern == kEveryFile || MatchesWildcard(upperName, pattern);
    });
}

bool MatchesNamingPattern(std::wstring_view upperName, const FilePatterns& patterns) {
    return !upperName.empty() && std::ranges::any_of(patterns, [&](const std::wstring& pattern) {
        return pattern.find_first_not_of(L"*.") != std::wstring::npos &&
               MatchesWildcard(upperName, pattern);
    });
}

}  // namespace tessary
