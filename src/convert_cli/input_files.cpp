#include "convert_cli/input_files.h"

#include <utility>

#include "app/base/paths.h"
#include "app/base/scan_folders.h"

namespace tessary {
namespace {

using Files = std::vector<std::wstring>;

// `root`: the folder that they were found under.
void Append(InputFiles& found, Files&& added, const std::wstring& root) {
    for (std::wstring& path : added)
        found.files.push_back({std::move(path), root});
}

void AddFolder(const std::wstring& folder, bool recursive, InputFiles& found) {
    const size_t before = found.files.size();
    bool allRead = true;
    const unsigned long error = ScanFolders(
        {.folder = folder, .subFolders = recursive, .extensions = {}}, [&](ScanNews&& news) {
            Append(found, PathsOf(news.files), folder);
            for (const std::wstring& one : news.unreadable) {
                found.troubles.push_back(L"フォルダを読み取れません: " + one);
                allRead = false;
            }
            return true;
        });
    if (error != 0) {
        found.troubles.push_back(L"フォルダを読み取れません: " + folder);
    } else if (allRead && found.files.size() == before) {
        found.troubles.push_back(L"フォルダにファイルがありません: " + folder);
    }
}

void AddMatching(const std::wstring& pattern, InputFiles& found) {
    bool whole = true;
    Files matching = PlainFilesInFolder(FolderOf(pattern), FileNameOf(pattern), &whole);
    if (!whole) {
        found.troubles.push_back(L"フォルダを読み取れません: " + FolderOf(pattern));
    } else if (matching.empty()) {
        found.troubles.push_back(L"一致するファイルがありません: " + pattern);
    }
    Append(found, std::move(matching), FolderOf(pattern));
}

void AddNamed(const std::wstring& name, bool recursive, InputFiles& found) {
    // The current folder may change later (plug-ins do that), so names are made whole here.
    const std::wstring path = FullPathOf(name);
    if (FileNameOf(path).find_first_of(L"*?") != std::wstring::npos) {
        AddMatching(path, found);
    } else if (IsFolder(path)) {
        AddFolder(path, recursive, found);
    } else if (PathExists(path)) {
        found.files.push_back({path});
    } else {
        found.troubles.push_back(L"ファイルが見つかりません: " + name);
    }
}

}  // namespace

InputFiles FindInputFiles(const std::vector<std::wstring>& names, bool recursive) {
    InputFiles found;
    for (const std::wstring& name : names)
        AddNamed(name, recursive, found);
    return found;
}

}  // namespace tessary
