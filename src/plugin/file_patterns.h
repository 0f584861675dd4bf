// The file patterns of a plug-in.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// Upper-case wildcard patterns such as `*.JPG`, at least one and at most kMaxPatterns.
using FilePatterns = std::vector<std::wstring>;
constexpr size_t kMaxPatterns = 64;

// What a plug-in gets that names no patterns.
inline constexpr wchar_t kEveryFile[] = L"*.*";

// Adds the patterns of a text such as `*.jpg;.jpeg`, as far as there is room. A bare extension
// (`.jpeg`, `jfif`), as some plug-ins give, becomes a pattern.
void AppendPatterns(std::wstring_view upperText, FilePatterns& patterns);

// Whether a pattern matches the name, which must be in upper case; `*.*` matches every name, and
// none matches an empty one.
bool MatchesAnyPattern(std::wstring_view upperName, const FilePatterns& patterns);

// The same without the patterns that match every name, `*.*` and `*`.
bool MatchesNamingPattern(std::wstring_view upperName, const FilePatterns& patterns);

}  // namespace tessary
