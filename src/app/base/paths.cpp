#include "app/base/paths.h"

#include <windows.h>

#include <iterator>
#include <utility>

#include "app/base/handles.h"
#include "app/base/text.h"

namespace tessary {
namespace {

// Above this length (a folder's limit without the prefix, less an 8.3 name) the plain form may
// fail.
constexpr size_t kPlainPathLimit = MAX_PATH - 12;

DWORD AttributesOf(std::wstring_view path) {
    return path.empty() ? INVALID_FILE_ATTRIBUTES : GetFileAttributesW(ExtendedPath(path).c_str());
}

// Calls a system routine that fills a buffer and answers the size it would need.
template <typename Call>
std::wstring FilledText(Call call) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = call(text.data(), static_cast<DWORD>(text.size()));
        if (length < text.size()) {
            text.resize(length);
            return text;
        }
        text.resize(length + 1);
    }
}

std::wstring ShortPathOf(std::wstring_view path) {
    const std::wstring extended = ExtendedPath(path);
    std::wstring result = FilledText([&](wchar_t* buffer, DWORD size) {
        return GetShortPathNameW(extended.c_str(), buffer, size);
    });
    if (result.starts_with(LR"(\\?\UNC\)")) return LR"(\\)" + result.substr(8);
    if (result.starts_with(LR"(\\?\)")) result.erase(0, 4);
    return result;
}

}  // namespace

std::wstring AddBackslash(std::wstring_view path) {
    std::wstring result(path);
    if (result.size() > 3 && result.back() != L'\\') result += L'\\';
    return result;
}

std::wstring RemoveBackslash(std::wstring_view path) {
    if (!path.empty() && (path.size() <= 3 || path.back() == L'\\')) path.remove_suffix(1);
    return std::wstring(path);
}

std::wstring FileNameOf(std::wstring_view path) {
    return std::wstring(path.substr(path.rfind(L'\\') + 1));
}

std::wstring FolderOf(std::wstring_view path) {
    return std::wstring(path.substr(0, path.rfind(L'\\') + 1));
}

std::wstring UpperExtensionOf(std::wstring_view path) {
    const std::wstring name = FileNameOf(path);
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos ? std::wstring() : ToUpper(name.substr(dot + 1));
}

std::wstring FullPathOf(std::wstring_view path) {
    if (path.empty()) return {};
    const std::wstring name(path);
    std::wstring full = FilledText([&](wchar_t* buffer, DWORD size) {
        return GetFullPathNameW(name.c_str(), size, buffer, nullptr);
    });
    return full.empty() ? name : full;
}

std::wstring ExtendedPath(std::wstring_view path) {
    if (path.size() < kPlainPathLimit || path.starts_with(LR"(\\?\)")) return std::wstring(path);
    const std::wstring full = FullPathOf(path);
    if (full.starts_with(LR"(\\)")) return LR"(\\?\UNC\)" + full.substr(2);
    return LR"(\\?\)" + full;
}

bool PathExists(std::wstring_view path) {
    return AttributesOf(path) != INVALID_FILE_ATTRIBUTES;
}

bool IsFolder(std::wstring_view path) {
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

namespace {

std::wstring WithBackslash(std::wstring_view folder) {
    std::wstring prefix(folder);
    if (!prefix.empty() && prefix.back() != L'\\') prefix += L'\\';
    return prefix;
}

// Whether the system has found it for its short name only: `*.htm` finds `page.html` as well, for
// it may be called PAGE~1.HTM too.
bool IsFoundByShortName(const WIN32_FIND_DATAW& entry, std::wstring_view pattern) {
    const std::wstring upper = ToUpper(pattern);
    return entry.cAlternateFileName[0] != L'\0' &&
           MatchesWildcard(ToUpper(entry.cAlternateFileName), upper) &&
           !MatchesWildcard(ToUpper(entry.cFileName), upper);
}

// The names of what is in a folder and has none of these attributes.
std::vector<std::wstring> NamesWithout(DWORD attributes, const std::wstring& prefix,
                                       std::wstring_view pattern, bool* whole = nullptr) {
    std::vector<std::wstring> names;
    // Short names take the system time to find.
    const bool isAll = pattern == L"*";
    WIN32_FIND_DATAW entry;
    UniqueFind find(FindFirstFileExW(ExtendedPath(prefix + std::wstring(pattern)).c_str(),
                                     isAll ? FindExInfoBasic : FindExInfoStandard, &entry,
                                     FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
    if (find) {
        do {
            if ((entry.dwFileAttributes & attributes) != 0) continue;
            if (isAll || !IsFoundByShortName(entry, pattern)) names.emplace_back(entry.cFileName);
        } while (FindNextFileW(find.Get(), &entry));
    }
    const DWORD error = GetLastError();
    if (whole != nullptr && error != ERROR_NO_MORE_FILES && error != ERROR_FILE_NOT_FOUND) {
        *whole = false;
    }
    return names;
}

std::vector<std::wstring> FilesWithout(DWORD attributes, std::wstring_view folder,
                                       std::wstring_view pattern, bool* whole = nullptr) {
    const std::wstring prefix = WithBackslash(folder);
    std::vector<std::wstring> files =
        NamesWithout(attributes | FILE_ATTRIBUTE_DIRECTORY, prefix, pattern, whole);
    for (std::wstring& file : files)
        file.insert(0, prefix);
    return files;
}

}  // namespace

std::vector<std::wstring> FilesInFolder(std::wstring_view folder, std::wstring_view pattern) {
    return FilesWithout(0, folder, pattern);
}

std::vector<std::wstring> PlainFilesInFolder(std::wstring_view folder, std::wstring_view pattern,
                                             bool* whole) {
    return FilesWithout(FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM, folder, pattern, whole);
}

std::vector<std::wstring> NamesInFolder(std::wstring_view folder) {
    return NamesWithout(0, WithBackslash(folder), L"*");
}

std::optional<std::string> AnsiPathOf(std::wstring_view path) {
    const auto fitting = [](std::wstring_view text) {
        std::optional<std::string> ansi = ToAnsiExact(text);
        return ansi && ansi->size() < MAX_PATH ? ansi : std::nullopt;
    };
    if (std::optional<std::string> plain = fitting(path)) return plain;
    const std::wstring shortPath = ShortPathOf(path);
    return shortPath.empty() ? std::nullopt : fitting(shortPath);
}

}  // namespace tessary
