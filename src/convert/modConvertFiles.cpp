#include "convert/modConvertFiles.h"

#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/delete_files.h"
#include "convert/make_folder.h"
#include "convert/no_system_messages.h"
#include "plugin/file_stamp.h"
#include "plugin/susie_calls.h"

namespace tessary {

bool ConvertFiles(const std::wstring& targetFolder, ConvertMonitor& monitor) {
    if (ProgressWatch::IsThere() || PluginCallUnderWay()) return false;
    return Trapped(false, [&] {
        const std::vector<ConvertSource> files = monitor.ConvertFileList();
        // Plug-ins may change the current folder in the middle of the run.
        const std::wstring folder = FullPathOf(targetFolder);
        if (!MakeFolder(folder) || files.empty() || files.front().path.empty()) return false;
        const ProgressWatch watch(monitor);
        const NoSystemMessages quiet;
        return ConvertRun(AddBackslash(folder), files, monitor).Run();
    });
}

bool ConvertRun::Run() {
    const DivertedErrors errors([this](const RaisedError& error) {
        if (!ahead_.Disturb()) WriteUnexpected(error);
    });
    log_.Open();
    bool goesOn = true;
    for (current_ = 1; goesOn && current_ <= list_.UpperBound(); ++current_) {
        const ULONGLONG start = GetTickCount64();
        report_ = {.source = Entry().source, .member = Entry().member};
        isReported_ = false;
        Step([&](StepResult&) {
            log_.WriteConvertLog(L"*** 変換開始 ***", {}, 0);
            log_.WriteConvertLog(L"ファイル名", Entry().path, 2);
            ConvertEntry();
        });
        report_.milliseconds = static_cast<uint32_t>(GetTickCount64() - start);
        Trapped([&] { TellReport(); });
        goesOn = Trapped(true, [&] {
            log_.WriteConvertLog(L"*** 変換処理終了 ***", {}, 0);
            log_.WriteSeparator();
            return monitor_.SetProgressBar(current_, list_.UpperBound(), 0, 100);
        });
        if (!goesOn) Trapped([&] { WriteStopped(); });
    }
    Trapped([&] { log_.WriteConvertLog(L"*** すべての変換処理が完了しました ***", {}, 0); });
    log_.Close();
    return goesOn;
}

void ConvertRun::TellReport() {
    // What was not extracted has been told then.
    if (!isReported_ || Entry().path.empty()) return;
    if (report_.outcome == FileOutcome::kConverted) {
        report_.bytes = StampOf(report_.target).value_or(FileStamp()).size;
    }
    monitor_.FileDone(report_);
}

void ConvertRun::Report(FileOutcome outcome, FileReason reason, std::wstring text) {
    if (std::exchange(isReported_, true)) return;
    report_.outcome = outcome;
    report_.reason = reason;
    report_.text = text.empty() ? ReasonText(reason) : std::move(text);
}

void ConvertRun::ConvertEntry() {
    // A copy: the list grows meanwhile.
    const std::wstring path = Entry().path;
    const bool isExtracted = list_.IsExtracted(current_);
    const std::wstring name = FileNameOf(path);
    if (!CheckDecodeFileName(name)) {
        log_.WriteConvertLog(L"[警告]", L"ファイルを処理できません", 2);
        log_.WriteConvertLog(name + L" は一括変換のファイル名のフィルタ設定と一致しません", {}, 4);
        RemoveExtractedFile(path, isExtracted);
        Report(FileOutcome::kDeclined, FileReason::kNameFiltered);
        return;
    }
    const StepResult result = Step([&](StepResult& kindResult) {
        kindResult = StepResult::kNotHandled;  // until the kind is known
        kindResult = ConvertByKind(path, isExtracted ? FolderOf(path) : targetFolder_);
    });
    source_ = {};
    // What came of the file has been told by now.
    Trapped([&] { CleanUp(path, isExtracted, result); });
}

void ConvertRun::CleanUp(const std::wstring& path, bool isExtracted, StepResult result) {
    if (result != StepResult::kDone) {
        RemoveExtractedFile(path, isExtracted);
    } else if (isExtracted) {
        DeleteExtracted(path);
    }
    monitor_.SetProgressBar(-1, -1, 200, 200);
}

StepResult ConvertRun::ConvertByKind(const std::wstring& path, const std::wstring& outputFolder) {
    std::optional<SourceFile> known = ahead_.Take(path);
    source_ = known ? std::move(*known) : LookAtFile(path);
    switch (source_.kind) {
        case kFileBitmap:
            return ConvertBitmapFile(path, outputFolder);
        case kFilePicture:
            return ConvertPictureFile(path, source_.pluginKey, outputFolder);
        case kFileArchive:
            return ConvertArchiveFile(path, source_.pluginKey, outputFolder + FileNameOf(path));
        case kFileUnknown:
            break;
    }
    log_.WriteConvertLog(L"ファイル種別", L"未知のファイル", 2);
    Report(FileOutcome::kFailed, FileReason::kUnknownFormat);
    return StepResult::kNotHandled;
}

void ConvertRun::RemoveExtractedFile(const std::wstring& path, bool isExtracted) {
    if (!isExtracted || Values().convert.decodeUnknownFile != 0) return;
    DeleteExtracted(path);
    log_.WriteConvertLog(L"ファイルを削除しました", {}, 2);
}

// A member may have been replaced by the picture that it or another has become.
void ConvertRun::DeleteExtracted(const std::wstring& path) {
    if (!savedFiles_.contains(ToUpper(path))) DeleteFiles(path, true);
}

void ConvertRun::MakeWayFor(const std::wstring& output) {
    if (EqualsIgnoreCase(Entry().path, output) || !list_.Holds(output)) return;
    const size_t extensionSize = UpperExtensionOf(output).size();
    const size_t dot = output.size() - (extensionSize == 0 ? 0 : extensionSize + 1);
    for (int32_t index = current_ + 1; index <= list_.UpperBound(); ++index) {
        if (!list_.IsExtracted(index) || !EqualsIgnoreCase(list_.At(index).path, output)) continue;
        std::wstring other;
        int number = 2;
        do {
            other = output;
            other.insert(dot, L" (" + std::to_wstring(number++) + L")");
        } while (PathExists(other));
        if (MoveFileW(ExtendedPath(list_.At(index).path).c_str(), ExtendedPath(other).c_str())) {
            list_.SetPath(index, other);
        }
        return;
    }
}

void ConvertRun::WritePluginError(const PluginFailure& failure, int16_t indent) {
    const std::wstring result = std::to_wstring(static_cast<int32_t>(failure.result));
    log_.WriteConvertLog(L"エラーモジュール", failure.function, indent);
    log_.WriteConvertLog(L"エラーコード(" + result + L")", failure.text, indent);
}

void ConvertRun::WriteUnexpected(const RaisedError& error) {
    log_.WriteConvertLog(L"[エラー]", error.Description(), 2);
}

void ConvertRun::WriteStopped() {
    log_.WriteConvertLog(L"!!! 変換処理がユーザーにより中断されました !!!", {}, 0);
    log_.WriteSeparator();
}

}  // namespace tessary
