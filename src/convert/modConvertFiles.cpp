#include "convert/modConvertFiles.h"

#include <algorithm>
#include <utility>

#include "app/base/distant_file.h"
#include "app/base/error.h"
#include "app/base/fetch_file.h"
#include "app/base/file_identity.h"
#include "app/base/paths.h"
#include "app/base/stay_awake.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "app/settings/modValue.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/delete_files.h"
#include "convert/extraction_record.h"
#include "convert/make_folder.h"
#include "convert/no_system_messages.h"
#include "convert/read_failure.h"
#include "convert/save_extension.h"
#include "convert/source_order.h"
#include "picture/read/no_picture.h"
#include "plugin/call_watch.h"
#include "plugin/file_stamp.h"
#include "plugin/host_state.h"
#include "plugin/long_run.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_state.h"

namespace tessary {

namespace {

// A file is finished behind the user's stop, but for one that takes longer; in milliseconds.
constexpr ULONGLONG kStopPatience = 3000;

WorkList ListOf(const std::vector<ConvertSource>& files, const std::wstring& targetFolder,
                const ConvertSettings& settings) {
    std::vector<WorkEntry> entries = EntriesOf(files, targetFolder, settings.keepFolders);
    if (settings.onConflict == kConflictOverwrite) return {std::move(entries), {}};
    OrderedEntries ordered = WithResultsLast(std::move(entries), targetFolder, settings);
    return {std::move(ordered.first), std::move(ordered.last)};
}

}  // namespace

ConvertEnd ConvertFiles(const std::wstring& targetFolder, ConvertMonitor& monitor) {
    if (ProgressWatch::IsThere() || PluginCallUnderWay()) return {};
    return Trapped(ConvertEnd(), [&] {
        const std::vector<ConvertSource> files = monitor.ConvertFileList();
        // Plug-ins may change the current folder in the middle of the run.
        const std::wstring folder = FullPathOf(targetFolder);
        if (!MakeFolder(folder) || files.empty() || files.front().path.empty()) return ConvertEnd();
        const ProgressWatch watch(monitor);
        const NoSystemMessages quiet;
        const StayAwake awake(AwakeNeed::kMachine, L"画像を変換しています");
        ConvertRun run(AddBackslash(folder), files, {Values().convert, ChosenSaveOptions()},
                       monitor);
        const bool isWhole = run.Run();
        if (const uint32_t refusal = run.Log().Refusal(); refusal != 0) GiveUpLogFile(refusal);
        const uint32_t error = run.Log().Error();
        return ConvertEnd{isWhole, error != 0 ? error : Values().logFileRefusal};
    });
}

ConvertRun::ConvertRun(const std::wstring& targetFolder, const std::vector<ConvertSource>& files,
                       ConvertOptions options, ConvertMonitor& monitor)
    : options_(std::move(options)),
      settings_(options_.convert),
      list_(ListOf(files, targetFolder, settings_)),
      monitor_(monitor),
      log_(monitor),
      names_(files, settings_.onConflict, monitor) {
    for (int32_t index = 1; index <= list_.UpperBound(); ++index) {
        const WorkEntry& entry = list_.At(index);
        names_.Announce(entry);
        namesakes_[ToUpper(entry.folder + FileNameOf(entry.path))].insert(ToUpper(entry.path));
    }
}

bool ConvertRun::Run() {
    const DivertedErrors errors([this](const RaisedError& error) {
        if (!ahead_.Disturb()) WriteUnexpected(error);
    });
    const CallWatch calls(
        [this](const WaitedCall&) { return IsGivenUp() ? CallWish::kStops : CallWish::kGoesOn; });
    const LongRun run;
    log_.Open(settings_);
    if (threads_ > 1 && Host().furtherConnector) filesAhead_.emplace(threads_, options_);
    bool goesOn = true;
    int32_t index = 1;
    for (; goesOn && index <= list_.UpperBound(); ++index) {
        list_.Reach(index);
        Trapped([&] { PlanAhead(index); });
        FileAtHand file(index, list_.At(index));
        Step(file, [&](StepResult&) {
            log_.WriteConvertLog(L"*** 変換開始 ***", {}, 0);
            log_.WriteConvertLog(L"ファイル名", file.entry.path, 2);
            ConvertEntry(file);
        });
        file.report.milliseconds = file.Age();
        Trapped([&] { TellReport(file); });
        goesOn = Trapped(true, [&] {
            TellStoppedPlugins(file);
            log_.WriteConvertLog(L"*** 変換処理終了 ***", {}, 0);
            log_.WriteSeparator();
            return monitor_.SetProgressBar(index, list_.UpperBound(), 0, 100);
        });
        if (!goesOn) Trapped([&] { WriteStopped(); });
    }
    filesAhead_.reset();
    Trapped([&] { DeleteUnconverted(index); });
    Trapped([&] { log_.WriteConvertLog(L"*** すべての変換処理が完了しました ***", {}, 0); });
    log_.Close();
    return goesOn;
}

bool ConvertRun::IsGivenUp() {
    if (stopAskedAt_ == 0 && !monitor_.SetProgressBar(-1, -1, 0, 0))
        stopAskedAt_ = GetTickCount64();
    return stopAskedAt_ != 0 && GetTickCount64() - stopAskedAt_ >= kStopPatience;
}

// With the first file that fails: the crash may have been in the reading ahead of one before.
void ConvertRun::TellStoppedPlugins(const FileAtHand& file) {
    if (stopIsTold_ || file.report.outcome != FileOutcome::kFailed || !PluginsAreStopped()) return;
    log_.WriteConvertLog(L"[警告]", PluginsStoppedText(), 2);
    stopIsTold_ = true;
}

void ConvertRun::TellReport(FileAtHand& file) {
    // What was not extracted has been told then.
    if (!file.IsReported() || file.entry.path.empty()) return;
    if (file.report.outcome == FileOutcome::kConverted) {
        file.report.bytes = StampOf(file.report.target).value_or(FileStamp()).size;
    }
    monitor_.FileDone(file.report);
}

void ConvertRun::ReportUnwritten(FileAtHand& file, DWORD error, const std::wstring& path) {
    const FileReason reason = ReasonOfWriteError(error, path);
    const std::wstring text = WriteErrorText(error);
    log_.WriteConvertLog(L"詳細情報", text, 4);
    file.Report(FileOutcome::kFailed, reason,
                reason == FileReason::kWriteFailed ? text : std::wstring());
}

void ConvertRun::ConvertEntry(FileAtHand& file) {
    const WorkEntry& entry = file.entry;
    const std::wstring name = FileNameOf(entry.path);
    if (!CheckDecodeFileName(name, settings_)) {
        log_.WriteConvertLog(L"[警告]", L"ファイルを処理できません", 2);
        log_.WriteConvertLog(name + L" は一括変換のファイル名のフィルタ設定と一致しません", {}, 4);
        RemoveExtractedFile(entry);
        file.Report(FileOutcome::kDeclined, FileReason::kNameFiltered);
        return;
    }
    const StepResult result = Step(file, [&](StepResult& kindResult) {
        kindResult = StepResult::kNotHandled;  // until the kind is known
        kindResult = ConvertByKind(file);
    });
    // What came of the file has been told by now.
    Trapped([&] { CleanUp(entry, result); });
}

void ConvertRun::CleanUp(const WorkEntry& entry, StepResult result) {
    if (result != StepResult::kDone) {
        RemoveExtractedFile(entry);
    } else if (entry.IsExtracted()) {
        DeleteExtracted(entry);
    }
    monitor_.SetProgressBar(-1, -1, 200, 200);
}

StepResult ConvertRun::ConvertByKind(FileAtHand& file) {
    const WorkEntry& entry = file.entry;
    if (const auto of = names_.SourceOfResult(entry.path); of && !entry.IsExtracted()) {
        if (settings_.onConflict != kConflictOverwrite) {
            return Skip(file, entry.path, FileReason::kAlreadyConverted);
        }
        // Once more it may be converted where it is in the list twice.
        if (!IsSameFile(*of, entry.path)) {
            log_.WriteConvertLog(L"[エラー]", ReasonText(FileReason::kOverwritten), 2);
            file.Report(FileOutcome::kFailed, FileReason::kOverwritten);
            return StepResult::kNotHandled;
        }
    }
    std::optional<SourceAtHand> known = TakeAhead(file);
    const bool isElsewhere = !known && IsNotOnThisDisk(entry.path);
    SourceAtHand source =
        known ? std::move(*known)
              : SourceAtHand{isElsewhere ? LookAtName(entry.path) : LookAtFile(entry.path)};
    const std::optional<std::wstring> extension = OnlySaveExtension(settings_);
    if (IsPictureKind(source.file.kind) && extension && names_.WillSkip(entry, *extension)) {
        const OutputChoice choice =
            names_.Choose({entry, *extension, [](const std::wstring&) { return true; }});
        if (choice.isSkipped) return Skip(file, choice.path, choice.reason);
    }
    if (isElsewhere && IsWorthFetching(entry, source.file.kind)) {
        if (const StepResult fetched = FetchSource(file); fetched != StepResult::kDone) {
            return fetched;
        }
        source.file = LookAtFile(entry.path);
    }
    switch (source.file.kind) {
        case kFileBitmap:
            return ConvertBitmapFile(file, source);
        case kFilePicture:
            return ConvertPictureFile(file, source);
        case kFileArchive:
            return ConvertArchiveFile(file, source.file.plugin);
        case kFileUnknown:
            break;
    }
    log_.WriteConvertLog(L"ファイル種別", L"未知のファイル", 2);
    ReportUnknown(file, source.file);
    return StepResult::kNotHandled;
}

bool ConvertRun::IsWorthFetching(const WorkEntry& entry, FileKind kind) const {
    switch (kind) {
        case kFileUnknown:
            return !IsNoPicture(entry.path);
        case kFileArchive:
            return ReasonNotToExpand(entry) == FileReason::kNone;
        default:
            return true;
    }
}

StepResult ConvertRun::FetchSource(FileAtHand& file) {
    log_.WriteConvertLog(L"クラウドから取得しています", {}, 2);
    const std::optional<DWORD> error = FetchFile(file.entry.path, [&](int done, int total) {
        TellProgress(done, total);
        return monitor_.SetProgressBar(-1, -1, 0, 0);
    });
    if (!error) {
        file.Report(FileOutcome::kStopped);
        return StepResult::kStopped;
    }
    if (*error == ERROR_SUCCESS) return StepResult::kDone;
    const std::wstring text = FetchErrorText(*error);
    log_.WriteConvertLog(L"[エラー]", text, 2);
    file.Report(FileOutcome::kFailed, FileReason::kNotFetched, text);
    return StepResult::kNotHandled;
}

void ConvertRun::ReportUnknown(FileAtHand& file, const SourceFile& source) {
    if (IsGivenUp()) {
        file.Report(FileOutcome::kStopped);
    } else if (IsNoPicture(source.path)) {
        file.Report(FileOutcome::kDeclined, FileReason::kNoPicture);
    } else if (PluginsAreStopped()) {
        file.Report(FileOutcome::kFailed, FileReason::kPluginFailed, PluginsStoppedText());
    } else if (const FileReason reason = ReasonUnknown(source.path);
               reason == FileReason::kUnknownFormat && source.refusal) {
        const Search::Refusal& refusal = *source.refusal;
        const FileReason why = ReasonOf(refusal);
        const bool isSilent = why == FileReason::kPluginSilent;
        log_.WriteConvertLog(L"詳細情報", isSilent ? ReasonText(why) : refusal.reason, 2);
        file.Report(FileOutcome::kFailed, why, FailureText(refusal));
    } else {
        file.Report(FileOutcome::kFailed, reason);
    }
}

void ConvertRun::RemoveExtractedFile(const WorkEntry& entry) {
    if (!entry.IsExtracted()) return;
    const auto isLike = [&](const std::wstring& other) {
        return HaveSameContent(entry.path, other);
    };
    // One that stands there already, from an earlier run or whoever's, is not kept twice.
    if (settings_.decodeUnknownFile != 0 && std::ranges::none_of(entry.beside, isLike)) {
        if (entry.record) entry.record->Remove(entry.path);
        return;
    }
    DeleteExtracted(entry);
    log_.WriteConvertLog(L"ファイルを削除しました", {}, 2);
}

// A member may have been replaced by the picture that it or another has become.
void ConvertRun::DeleteExtracted(const WorkEntry& entry) {
    if (entry.path.empty()) return;
    if (!names_.SourceOfResult(entry.path)) DeleteFiles(entry.path, true);
    names_.Release(entry);
    if (entry.record) entry.record->Remove(entry.path);
}

void ConvertRun::DeleteUnconverted(int32_t first) {
    for (int32_t index = first; index <= list_.UpperBound(); ++index) {
        if (list_.At(index).IsExtracted()) DeleteExtracted(list_.At(index));
    }
}

void ConvertRun::MakeWayFor(const FileAtHand& file, const std::wstring& output) {
    if (EqualsIgnoreCase(file.entry.path, output) || !list_.Holds(output)) return;
    const size_t extensionSize = UpperExtensionOf(output).size();
    const size_t dot = output.size() - (extensionSize == 0 ? 0 : extensionSize + 1);
    for (int32_t index = file.index + 1; index <= list_.UpperBound(); ++index) {
        if (!list_.At(index).IsExtracted() || !EqualsIgnoreCase(list_.At(index).path, output))
            continue;
        std::wstring other;
        int number = 2;
        do {
            other = output;
            other.insert(dot, L" (" + std::to_wstring(number++) + L")");
        } while (PathExists(other));
        const WorkEntry entry = list_.At(index);
        if (entry.record) entry.record->Add(other);
        const bool isMoved =
            MoveFileW(ExtendedPath(entry.path).c_str(), ExtendedPath(other).c_str()) != FALSE;
        if (isMoved) list_.SetPath(index, other);
        if (entry.record) entry.record->Remove(isMoved ? entry.path : other);
        return;
    }
}

void ConvertRun::WritePluginError(const PluginFailure& failure, int16_t indent) {
    const std::wstring result = std::to_wstring(static_cast<int32_t>(failure.result));
    log_.WriteConvertLog(L"エラーモジュール", failure.function, indent);
    const FileReason reason = ReasonOf(failure);
    const bool isSilent = reason == FileReason::kPluginSilent;
    log_.WriteConvertLog(L"エラーコード(" + result + L")",
                         isSilent ? ReasonText(reason) : failure.lastError, indent);
}

void ConvertRun::WriteUnexpected(const RaisedError& error) {
    log_.WriteConvertLog(L"[エラー]", error.Description(), 2);
}

void ConvertRun::WriteStopped() {
    log_.WriteConvertLog(L"!!! 変換処理がユーザーにより中断されました !!!", {}, 0);
    log_.WriteSeparator();
}

}  // namespace tessary
