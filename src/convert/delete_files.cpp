#include "convert/delete_files.h"

#include <windows.h>

#include <vector>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {

bool DeleteFiles(const std::wstring& pattern, bool force) {
    const std::wstring folder = FolderOf(pattern);
    const std::wstring name = FileNameOf(pattern);
    if (!force || name.empty()) return true;
    const bool isPattern = name.find_first_of(L"*?") != std::wstring::npos;
    for (const std::wstring& file : FilesInFolder(folder, name)) {
        if (!isPattern && !EqualsIgnoreCase(FileNameOf(file), name)) continue;
        const std::wstring path = ExtendedPath(file);
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileW(path.c_str());
    }
    return true;
}

}  // namespace tessary
