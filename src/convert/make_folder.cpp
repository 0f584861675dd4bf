#include "convert/make_folder.h"

#include <windows.h>

#include "app/base/paths.h"
#include "app/base/write_error.h"

namespace tessary {

bool MakeFolder(const std::wstring& folder) {
    if (folder.empty()) return false;
    if (IsFolder(folder)) return true;
    std::wstring path = folder;
    while (path.ends_with(L'\\'))
        path.pop_back();
    const std::wstring parent = FolderOf(path);
    // Nothing is left above a drive or `\\server`.
    if (parent.empty() || parent == LR"(\\)" || parent == LR"(\\?\)") {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return false;
    }
    if (!IsFolder(parent) && !MakeFolder(parent)) return false;
    if (CreateDirectoryW(ExtendedPath(path).c_str(), nullptr)) return true;
    const DWORD error = LastWriteError(path);
    if (IsFolder(path)) return true;
    SetLastError(error);
    return false;
}

}  // namespace tessary
