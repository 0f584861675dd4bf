#include "files/delete_file.h"

#include "app/base/paths.h"
#include "app/base/write_error.h"

namespace tessary {

DWORD DeleteForGood(const std::wstring& path) {
    const std::wstring file = ExtendedPath(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return DeletionError(GetLastError(), path);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (DeleteFileW(file.c_str())) return ERROR_SUCCESS;
    const DWORD error = DeletionError(GetLastError(), path);
    if (error != ERROR_SUCCESS) SetFileAttributesW(file.c_str(), attributes);
    return error;
}

DWORD DeletionError(DWORD error, const std::wstring& path) {
    if (PathExists(path)) {
        SetLastError(error);
        return LastWriteError(path);
    }
    // It is not gone when its drive is away, and may come back.
    const std::wstring full = FullPathOf(path);
    const bool isGone = error == ERROR_FILE_NOT_FOUND ||
                        (error == ERROR_PATH_NOT_FOUND &&
                         (full.starts_with(LR"(\\)") || IsFolder(full.substr(0, 3))));
    return isGone ? DWORD{ERROR_SUCCESS} : error;
}

}  // namespace tessary
