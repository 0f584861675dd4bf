// What a plug-in tells about itself (GetPluginInfo): its name and its file patterns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugin/susie_calls.h"

namespace tessary {

// Upper-case wildcard patterns such as `*.JPG`, at least one and at most kMaxPatterns.
using FilePatterns = std::vector<std::wstring>;
constexpr size_t kMaxPatterns = 64;

// What a plug-in gets that names no patterns.
inline constexpr wchar_t kEveryFile[] = L"*.*";

// The patterns of the even info numbers. A bare extension (`.jpeg`, `jfif`), as some plug-ins give,
// becomes a pattern.
FilePatterns ReadFilePatterns(SusieCalls& calls);

// Info number 1.
std::wstring ReadProductName(SusieCalls& calls);

// Whether a pattern matches the name, which must be in upper case; `*.*` matches every name.
bool MatchesAnyPattern(std::wstring_view upperName, const FilePatterns& patterns);

// The same without the patterns that match every name, `*.*` and `*`.
bool MatchesNamingPattern(std::wstring_view upperName, const FilePatterns& patterns);

}  // namespace tessary
