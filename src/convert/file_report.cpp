#include "convert/file_report.h"

#include <windows.h>

#include "app/base/fetch_file.h"
#include "app/base/paths.h"
#include "helpers/files/refusal.h"

namespace tessary {
namespace {

struct ReasonName {
    const wchar_t* key;
    const wchar_t* text;
};

ReasonName NameOf(FileReason reason) {
    switch (reason) {
        case FileReason::kNone:
            return {L"", L""};
        case FileReason::kNameFiltered:
            return {L"name-filtered", L"ファイル名のフィルタで除外"};
        case FileReason::kTooSmall:
            return {L"too-small", L"画像が小さい"};
        case FileReason::kArchiveNotExpanded:
            return {L"archive-not-expanded", L"圧縮ファイルを展開しない設定"};
        case FileReason::kNoPicture:
            return {L"no-picture", L"画像ではないファイル"};
        case FileReason::kTooDeep:
            return {L"too-deep", L"圧縮ファイルの入れ子が深すぎる"};
        case FileReason::kSameArchive:
            return {L"same-archive", L"同じ内容の圧縮ファイルを展開済み"};
        case FileReason::kTargetExists:
            return {L"target-exists", L"同じ名前のファイルがある"};
        case FileReason::kAlreadyConverted:
            return {L"already-converted", L"変換済みのファイルがある"};
        case FileReason::kListedTwice:
            return {L"listed-twice", L"一覧に 2 回あるファイル"};
        case FileReason::kMissing:
            return {L"missing", L"ファイルが見つからない"};
        case FileReason::kOverwritten:
            return {L"overwritten", L"変換する前に、この変換の別の結果で置き換えられた"};
        case FileReason::kUnreadable:
            return {L"unreadable", L"ファイルを読み取れない"};
        case FileReason::kNotFetched:
            return {L"not-fetched", L"クラウドから取得できない"};
        case FileReason::kEmptyFile:
            return {L"empty-file", L"空のファイル"};
        case FileReason::kUnknownFormat:
            return {L"unknown-format", L"未知の形式"};
        case FileReason::kNoPlugin:
            return {L"no-plugin", L"プラグインが読み込まれていない"};
        case FileReason::kPassword:
            return {L"password", L"パスワードが必要"};
        case FileReason::kBrokenData:
            return {L"broken-data", L"データが壊れている"};
        case FileReason::kVolumeMissing:
            return {L"volume-missing", L"分割された書庫の一部"};
        case FileReason::kKindNotRead:
            return {L"unsupported", L"対応していない種類"};
        case FileReason::kDamaged:
            return {L"damaged", L"画像の一部が損傷している"};
        case FileReason::kPluginFailed:
            return {L"plugin-failed", L"プラグインが読み取れない"};
        case FileReason::kPluginCrashed:
            return {L"plugin-crashed", L"プラグインの異常終了"};
        case FileReason::kPluginSilent:
            return {L"plugin-silent", L"応答なし"};
        case FileReason::kNoMembers:
            return {L"no-members", L"圧縮ファイルの中にファイルがない"};
        case FileReason::kBadName:
            return {L"bad-name", L"ファイル名として使用できない名前"};
        case FileReason::kOutOfMemory:
            return {L"out-of-memory", L"メモリ不足"};
        case FileReason::kDiskFull:
            return {L"disk-full", L"ディスクの空き容量がない"};
        case FileReason::kReadOnlyTarget:
            return {L"read-only-target", L"保存先のファイルが読み取り専用"};
        case FileReason::kAccessDenied:
            return {L"access-denied", L"アクセスが拒否された"};
        case FileReason::kTargetInUse:
            return {L"target-in-use", L"保存先のファイルが使用中"};
        case FileReason::kProtectedFolder:
            return {
                L"protected-folder",
                L"保存先のドライブが書き込み禁止か、セキュリティ機能（コントロールされたフォルダー "
                L"アクセスなど）が書き込みを止めた"};
        case FileReason::kNoTargetFolder:
            return {L"no-target-folder", L"保存先のフォルダがない"};
        case FileReason::kTargetLost:
            return {L"target-lost", L"書き込んだファイルが保存先で失われた"};
        case FileReason::kNotSavable:
            return {L"not-savable", L"この形式では保存できない画像"};
        case FileReason::kWriteFailed:
            return {L"write-failed", L"書き込めない"};
        case FileReason::kUnexpected:
            return {L"unexpected", L"予期しないエラー"};
    }
    return {L"", L""};
}

void Append(std::wstring& text, const wchar_t* label, int count) {
    text.append(text.empty() ? L"" : L"、").append(label).append(L" ");
    text.append(std::to_wstring(count)).append(L" 個");
}

}  // namespace

const wchar_t* ReasonKey(FileReason reason) {
    return NameOf(reason).key;
}

const wchar_t* ReasonText(FileReason reason) {
    return NameOf(reason).text;
}

FileReason ReasonOfReadError(unsigned long error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return FileReason::kMissing;
        case ERROR_ACCESS_DENIED:
            return FileReason::kAccessDenied;
        default:
            return IsFetchError(error) ? FileReason::kNotFetched : FileReason::kUnreadable;
    }
}

FileReason ReasonOfWriteError(unsigned long error, const std::wstring& target) {
    switch (error) {
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT: {
            const DWORD attributes = GetFileAttributesW(ExtendedPath(target).c_str());
            const bool isReadOnly = attributes != INVALID_FILE_ATTRIBUTES &&
                                    (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
                                    (attributes & FILE_ATTRIBUTE_READONLY) != 0;
            return isReadOnly ? FileReason::kReadOnlyTarget : FileReason::kAccessDenied;
        }
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return FileReason::kDiskFull;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return FileReason::kTargetInUse;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return FileReason::kNoTargetFolder;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
            return FileReason::kOutOfMemory;
        case ERROR_INVALID_NAME:
        case ERROR_FILENAME_EXCED_RANGE:
            return FileReason::kBadName;
        case ERROR_INVALID_DATA:
        case ERROR_FILE_TOO_LARGE:
            return FileReason::kNotSavable;
        case files::kErrorProtectedFolder:
            return FileReason::kProtectedFolder;
        case ERROR_FILE_INVALID:
            return FileReason::kTargetLost;
        default:
            return FileReason::kWriteFailed;
    }
}

std::wstring SourceText(const FileReport& report) {
    return report.member.empty() ? report.source : report.source + L'\\' + report.member;
}

std::wstring ReasonTextOf(const FileReport& report) {
    return report.text.empty() ? ReasonText(report.reason) : report.text;
}

std::optional<Remark> RemarkOf(const FileReport& report) {
    switch (report.outcome) {
        case FileOutcome::kConverted:
        case FileOutcome::kDeclined:
            if (report.isDamaged) return Remark::kDamaged;
            return report.isRenamed ? std::optional(Remark::kRenamed) : std::nullopt;
        case FileOutcome::kFailed:
            return report.isDamaged ? Remark::kDamaged : Remark::kFailed;
        case FileOutcome::kSkipped:
            return Remark::kSkipped;
        case FileOutcome::kStopped:
            break;
    }
    return Remark::kStopped;
}

const wchar_t* RemarkText(Remark remark) {
    constexpr const wchar_t* kTexts[kRemarkCount] = {L"失敗", L"損傷", L"中止", L"スキップ",
                                                     L"別名"};
    return kTexts[static_cast<size_t>(remark)];
}

void OutcomeCounts::Count(const FileReport& report) {
    ++all_;
    switch (report.outcome) {
        case FileOutcome::kConverted:
            ++(report.isDamaged ? damaged : converted);
            renamed += report.isRenamed ? 1 : 0;
            replaced += report.isReplaced ? 1 : 0;
            break;
        case FileOutcome::kDeclined:
            ++declined;
            filtered += report.reason == FileReason::kNameFiltered ? 1 : 0;
            break;
        case FileOutcome::kFailed:
            ++(report.isDamaged ? damaged : failed);
            break;
        case FileOutcome::kSkipped:
            ++skipped;
            break;
        case FileOutcome::kStopped:
            break;
    }
}

std::wstring OutcomeText(const OutcomeCounts& counts) {
    std::wstring text;
    Append(text, L"変換", counts.converted);
    if (counts.damaged != 0) Append(text, L"損傷", counts.damaged);
    if (counts.skipped != 0) Append(text, L"スキップ", counts.skipped);
    Append(text, L"対象外", counts.declined);
    Append(text, L"失敗", counts.failed);
    std::wstring kinds;
    if (counts.renamed != 0) Append(kinds, L"別名", counts.renamed);
    if (counts.replaced != 0) Append(kinds, L"置き換え", counts.replaced);
    return kinds.empty() ? text : text + L"（うち" + kinds + L"）";
}

}  // namespace tessary
