#include "app/base/command_line.h"

#include <windows.h>

#include <algorithm>
#include <iterator>

#include "app/base/modScreenCaps.h"
#include "app/base/paths.h"
#include "app/base/scan_folders.h"

namespace tessary {
namespace {

constexpr wchar_t kQuote = L'"';
constexpr wchar_t kBlank = L' ';

std::vector<std::wstring_view> SplitAtBlanks(std::wstring_view text) {
    std::vector<std::wstring_view> pieces;
    while (!text.empty()) {
        const size_t end = std::min(text.find(kBlank), text.size());
        pieces.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return pieces;
}

std::vector<std::wstring_view> SplitWithQuotes(std::wstring_view text) {
    std::vector<std::wstring_view> names;
    while (!text.empty()) {
        const wchar_t end = text.front() == kQuote ? kQuote : kBlank;
        if (end == kQuote) text.remove_prefix(1);
        const size_t length = std::min(text.find(end), text.size());
        names.push_back(text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return names;
}

std::wstring LongNameOf(const std::wstring& path) {
    wchar_t buffer[MAX_PATH];
    const DWORD length = GetLongPathNameW(path.c_str(), buffer, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::wstring(buffer, length) : path;
}

}  // namespace

std::vector<std::wstring> CommandLineNames(std::wstring_view commandLine, uint32_t platformId) {
    const bool is95 = platformId == kPlatformWindows95;
    if (!is95 && platformId != kPlatformNT) return {};
    std::vector<std::wstring> names;
    for (const std::wstring_view name :
         is95 ? SplitAtBlanks(commandLine) : SplitWithQuotes(commandLine)) {
        if (name.empty()) continue;  // between two blanks
        std::wstring path = FullPathOf(name);
        names.push_back(is95 ? LongNameOf(path) : std::move(path));
    }
    return names;
}

NamedFiles AppendNamedFiles(const std::vector<std::wstring>& names, std::vector<FoundFile>& files) {
    NamedFiles result;
    const auto take = [&](ScanNews&& news) {
        std::ranges::move(news.files, std::back_inserter(files));
        return true;
    };
    for (const std::wstring& name : names) {
        if (IsFolder(name)) {
            const ScanRequest request{.folder = name, .subFolders = false, .extensions = {}};
            if (ScanFolders(request, take) != ERROR_SUCCESS) result.whole = false;
        } else if (PathExists(name)) {
            files.push_back(NamedFileOf(name));
        } else {
            ++result.missing;
        }
    }
    return result;
}

int ParseCommandLine(std::wstring_view commandLine, uint32_t platformId,
                     std::vector<std::wstring>& files) {
    std::vector<FoundFile> found;
    AppendNamedFiles(CommandLineNames(commandLine, platformId), found);
    std::ranges::move(PathsOf(found), std::back_inserter(files));
    return static_cast<int>(found.size());
}

std::wstring CommandLineArguments() {
    std::wstring_view line = GetCommandLineW();
    // The program's name follows simpler rules than arguments do: a quoted name runs to the next
    // quote.
    const wchar_t end = line.starts_with(kQuote) ? kQuote : kBlank;
    const size_t length = line.find(end, end == kQuote ? 1 : 0);
    line.remove_prefix(length == std::wstring_view::npos ? line.size() : length + 1);
    const size_t first = line.find_first_not_of(kBlank);
    return std::wstring(first == std::wstring_view::npos ? std::wstring_view()
                                                         : line.substr(first));
}

}  // namespace tessary
