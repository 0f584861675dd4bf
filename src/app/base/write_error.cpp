#include "app/base/write_error.h"

#include "app/base/text.h"
#include "helpers/files/file_name.h"
#include "helpers/files/refusal.h"

namespace tessary {
namespace {

std::wstring SystemText(DWORD error) {
    wchar_t text[512]{};
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        nullptr, error, 0, text, 512, nullptr);
    return std::wstring(TrimSpaces({text, length})) + L"(エラー " + std::to_wstring(error) + L")";
}

}  // namespace

DWORD LastWriteError(std::wstring_view path) {
    const DWORD error = GetLastError();
    return files::TellingError(error, files::ExtendedFullName(std::wstring(path)));
}

std::wstring WriteErrorText(DWORD error) {
    switch (error) {
        case ERROR_SUCCESS:
            return {};
        case files::kErrorProtectedFolder:
            return L"このフォルダは変更できません。書き込み禁止のドライブか、「コントロールされた"
                   L"フォルダー アクセス」などが守っています（許可の方法は説明書にあります）。";
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return L"書き込む権限がないか、読み取り専用です。";
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return L"ディスクの空き容量が足りません。";
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return L"ファイルはほかのアプリケーションで使用中です。";
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return L"フォルダが見つかりません。";
        case ERROR_FILE_INVALID:
            return L"書き込んだファイルが、保存先で失われました。";
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
            return L"メモリが足りません。";
        case ERROR_FILE_TOO_LARGE:
            return L"この形式で保存できる大きさを超えています。";
        case ERROR_INVALID_DATA:
            return L"この画像はこの形式では保存できません。";
        default:
            return SystemText(error);
    }
}

}  // namespace tessary
