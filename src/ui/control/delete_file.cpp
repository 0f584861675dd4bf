#include "ui/control/delete_file.h"

#include <windows.h>

#include "app/base/message_box.h"
#include "app/base/paths.h"

namespace tessary {
namespace {

// Whether the system's last error tells that somebody else has deleted the file: not when its drive
// is away, and may come back.
bool IsGone(const std::wstring& path) {
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND) return true;
    if (error != ERROR_PATH_NOT_FOUND) return false;
    const std::wstring full = FullPathOf(path);
    return full.starts_with(LR"(\\)") || IsFolder(full.substr(0, 3));
}

bool Delete(const std::wstring& path) {
    const std::wstring file = ExtendedPath(path);
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return IsGone(path);
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (DeleteFileW(file.c_str()) || IsGone(path)) return true;
    SetFileAttributesW(file.c_str(), attributes);
    return false;
}

}  // namespace

DeleteOutcome DeleteListedFile(const std::wstring& path) {
    while (!Delete(path)) {
        switch (ShowMessageBox(
            L"ファイル " + path +
                L" を削除できません。\r\n"
                L"ファイルが見つからないかこのファイルはほかのアプリケーションで使用中です。\r\n"
                L"\r\n"
                L"[中止]をクリックすると削除処理を中断します。\r\n"
                L"[再試行]をクリックするとファイルの削除をリトライします\r\n"
                L"[無視]をクリックするとエラーを無視して削除処理を続行します",
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
