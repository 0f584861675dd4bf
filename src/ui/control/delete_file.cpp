#include "ui/control/delete_file.h"

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/write_error.h"
#include "helpers/files/refusal.h"

namespace tessary {
namespace {

// The system's error; 0 when it is gone.
DWORD Delete(const std::wstring& path) {
    const std::wstring file = ExtendedPath(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return DeletionError(GetLastError(), path);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (DeleteFileW(file.c_str())) return ERROR_SUCCESS;
    const DWORD error = DeletionError(GetLastError(), path);
    if (error != ERROR_SUCCESS) SetFileAttributesW(file.c_str(), attributes);
    return error;
}

}  // namespace

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

DeleteOutcome DeleteListedFile(const std::wstring& path) {
    while (const DWORD error = Delete(path)) {
        const bool isProtected = error == files::kErrorProtectedFolder;
        switch (ShowMessageBox(
            L"ファイル " + path +
                L" を削除できません。\r\n"
                L"ファイルが見つからないかこのファイルはほかのアプリケーションで使用中です。\r\n"
                L"\r\n"
                L"[中止]をクリックすると削除処理を中断します。\r\n"
                L"[再試行]をクリックするとファイルの削除をリトライします\r\n"
                L"[無視]をクリックするとエラーを無視して削除処理を続行します" +
                (isProtected ? L"\r\n\r\n" + WriteErrorText(error) : std::wstring()),
            MB_ABORTRETRYIGNORE | MB_ICONSTOP)) {
            case IDRETRY:
                continue;
            case IDIGNORE:
                return DeleteOutcome::kIgnore;
            default:
                return DeleteOutcome::kAbort;
        }
    }
    return DeleteOutcome::kDeleted;
}

}  // namespace tessary
