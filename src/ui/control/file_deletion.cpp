#include "ui/control/file_deletion.h"

#include <algorithm>

#include "app/base/message_box.h"
#include "app/base/write_error.h"
#include "files/delete_file.h"
#include "helpers/files/refusal.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

std::wstring Several(size_t count) {
    return std::to_wstring(count) + L" 個のファイル";
}

// Of files that no bin takes: `why` tells what is plain of all of them.
int AskAboutBinless(const std::vector<std::wstring>& paths, const wchar_t* why, unsigned buttons) {
    const bool isOne = paths.size() == 1;
    return ShowMessageBox(
        (isOne ? std::wstring(L"このファイル") : L"次のファイルなど、" + Several(paths.size())) +
            L"はごみ箱に入れられません。" + why + L"\r\n" + paths.front() +
            L"\r\n\r\n完全に削除しますか？ 削除すると、元に戻せません。",
        buttons | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
}

}  // namespace

bool FileDeletion::AskForGood(const std::vector<std::wstring>& paths) {
    const std::wstring what =
        paths.size() == 1 ? L"ファイル " + paths.front() + L" " : Several(paths.size());
    return ShowMessageBox(what +
                              L"を完全に削除しますか？\r\n"
                              L"ごみ箱には入らず、削除すると元に戻せません。",
                          MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

std::vector<std::wstring> FileDeletion::Begin(const std::vector<std::wstring>& paths) {
    isOneOfMany_ = paths.size() > 1;
    if (forGood_) return paths;
    std::vector<std::wstring> takes;
    for (const std::wstring& path : paths)
        (MayHaveBin(path) ? takes : binless_).push_back(path);
    if (binless_.empty()) return paths;
    constexpr wchar_t kWhy[] = L"ネットワークや取り外せるドライブにあるか、名前が長すぎます。";
    if (AskAboutBinless(binless_, kWhy, MB_YESNO) == IDYES) return paths;
    binless_.clear();
    return takes;
}

DeleteOutcome FileDeletion::Delete(const std::wstring& path) {
    DeleteOutcome outcome = DeleteOutcome::kDeleted;
    while (const DWORD error = TryToDelete(path, outcome)) {
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
    return outcome;
}

// The system's error. The bin may ask the user something itself, and its thread waits for that.
DWORD FileDeletion::TryToDelete(const std::wstring& path, DeleteOutcome& outcome) {
    if (forGood_ || std::ranges::find(binless_, path) != binless_.end()) return DeleteForGood(path);
    const std::optional<BinResult> result =
        CallInBackground<BinResult>([path] { return PutIntoBin(path); }, [] { return true; });
    if (!result) {
        outcome = DeleteOutcome::kAbort;
        return ERROR_SUCCESS;
    }
    switch (result->outcome) {
        case Binning::kDone:
            binned_.push_back(result->file);
            return ERROR_SUCCESS;
        case Binning::kGone:
            return ERROR_SUCCESS;
        case Binning::kNoBin: {
            const int answer =
                AskAboutBinless({path}, L"", isOneOfMany_ ? MB_YESNOCANCEL : MB_YESNO);
            if (answer == IDYES) {
                binless_.push_back(path);
                return DeleteForGood(path);
            }
            outcome = answer == IDNO ? DeleteOutcome::kIgnore : DeleteOutcome::kAbort;
            return ERROR_SUCCESS;
        }
        case Binning::kStopped:
            outcome = DeleteOutcome::kIgnore;
            return ERROR_SUCCESS;
        default:
            return result->error != ERROR_SUCCESS ? result->error : DWORD{ERROR_ACCESS_DENIED};
    }
}

}  // namespace tessary
