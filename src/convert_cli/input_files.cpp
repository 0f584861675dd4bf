#include "convert_cli/input_files.h"

#include <utility>

#include "app/base/paths.h"
#include "app/base/scan_folders.h"

namespace tessary {
namespace {

using Sources = std::vector<ConvertSource>;

// `root`: the folder that they were found under.
void Append(Sources& files, std::vector<std::wstring>&& added, const std::wstring& root) {
    for (std::wstring& path : added)
        files.push_back({std::move(path), root});
}

bool AddFolder(const std::wstring& folder, bool recursive, Sources& files) {
    return ScanFolders({.folder = folder, .subFolders = recursive, .extensions = {}},
                       [&](ScanNews&& news) {
                           Append(files, std::move(news.files), folder);
                           return true;
                       }) == 0;
}

bool AddNamed(const std::wstring& name, bool recursive, Sources& files) {
    // The current folder may change later (plug-ins do that), so names are made whole here.
    const std::wstring path = FullPathOf(name);
    if (FileNameOf(path).find_first_of(L"*?") != std::wstring::npos) {
        std::vector<std::wstring> matching = FilesInFolder(FolderOf(path), FileNameOf(path));
        const bool found = !matching.empty();
        Append(files, std::move(matching), FolderOf(path));
        return found;
    }
    if (IsFolder(path)) return AddFolder(path, recursive, files);
    if (!PathExists(path)) return false;
    files.push_back({path});
    return true;
}

}  // namespace

InputFiles FindInputFiles(const std::vector<std::wstring>& names, bool recursive) {
    InputFiles found;
    for (const std::wstring& name : names) {
        if (!AddNamed(name, recursive, found.files)) found.missing.push_back(name);
    }
    return found;
}

}  // namespace tessary
