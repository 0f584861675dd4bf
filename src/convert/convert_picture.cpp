// Converting one picture.
#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/make_folder.h"
#include "convert/read_failure.h"
#include "convert/save_extension.h"
#include "convert/trial_save.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// Reads the picture unless it was read ahead.
const ReadResult& Read(SourceAtHand& source, const ConvertOptions& options) {
    if (source.read) return *source.read;
    const std::optional<FileStamp> stamp = ExactStampOf(source.file.path);
    source.read =
        ReadPicture(source.file, {.progress = TellProgress,
                                  .takesOwnColors = TakesOwnColors(options.convert, options.save)});
    KeepMetadata(*source.read, source.file.path, stamp, options);
    return *source.read;
}

struct PictureKind {
    int32_t width;
    int32_t height;
    uint16_t bitCount;
};

// Its file may have taken the picture's place.
PictureKind KindOf(const SourceAtHand& source) {
    if (const Picture& picture = source.read->picture) {
        return {picture.Width(), picture.Height(), picture.Header().bitCount};
    }
    const EncodedPicture& encoded = *source.encoding->Made();
    return {encoded.width, encoded.height, encoded.bitCount};
}

std::wstring SizeText(int32_t width, int32_t height) {
    return std::to_wstring(width) + L" \u00D7 " + std::to_wstring(height);
}

}  // namespace

StepResult ConvertRun::ConvertBitmapFile(FileAtHand& file, SourceAtHand& source) {
    return Step(file, [&](StepResult& result) {
        log_.WriteConvertLog(L"ファイル種別", L"ビットマップファイル", 2);
        const ReadResult& read = Read(source, options_);
        if (!read.isBrokenBitmap) {
            log_.WriteConvertLog(L"ビットマップを読み込みました", {}, 2);
            result = SaveConvertedPicture(file, source);
            return;
        }
        log_.WriteConvertLog(L"ビットマップの読み込みに失敗しました", {}, 2);
        // A plug-in may know more of bitmaps.
        if (read.kind == kFilePicture) {
            source.file.plugin = read.plugin;
            result = ConvertPictureFile(file, source);
            return;
        }
        result = StepResult::kNotHandled;
        file.Report(FileOutcome::kFailed, FileReason::kBrokenData);
    });
}

StepResult ConvertRun::ConvertPictureFile(FileAtHand& file, SourceAtHand& source) {
    return Step(file, [&](StepResult& result) {
        const auto tellPlugin = [&](const std::wstring& plugin) {
            log_.WriteConvertLog(L"使用プラグイン", SusieCollection().NameOf(plugin), 2);
        };
        log_.WriteConvertLog(L"ファイル種別", L"画像ファイル", 2);
        tellPlugin(source.file.plugin);
        const ReadResult& read = Read(source, options_);
        if (read.kind == kFileUnknown && !read.failure) {
            // A file that its plug-in suddenly refuses counts as done.
            file.Report(FileOutcome::kFailed, FileReason::kPluginFailed);
            return;
        }
        // The first one has failed, and another one knew better.
        if (!EqualsIgnoreCase(read.plugin, source.file.plugin)) tellPlugin(read.plugin);
        if (read.kind == kFileArchive) {
            result = ConvertArchiveFile(file, read.plugin);
            return;
        }
        if (read.failure) {
            result = StepResult::kNotHandled;
            if (IsGivenUp()) file.Report(FileOutcome::kStopped);
            log_.WriteConvertLog(L"展開に失敗しました", file.entry.path, 2);
            log_.WriteConvertLog(L"詳細情報", {}, 4);
            WritePluginError(*read.failure, 4);
            file.Report(FileOutcome::kFailed, ReasonOf(*read.failure),
                        FailureText(*read.failure, read.plugin));
            return;
        }
        log_.WriteConvertLog(L"画像を展開しました", file.entry.path, 2);
        result = SaveConvertedPicture(file, source);
    });
}

bool ConvertRun::ToleratesDamage(FileAtHand& file, const std::wstring& damage) {
    if (damage.empty()) return true;
    file.report.isDamaged = true;
    log_.WriteConvertLog(L"画像の一部が損傷しています", {}, 2);
    log_.WriteConvertLog(L"詳細情報", damage, 4);
    if (!settings_.skipDamaged) return true;
    log_.WriteConvertLog(L"損傷のある画像は保存しない設定になっています", {}, 4);
    file.Report(FileOutcome::kFailed, FileReason::kDamaged, damage);
    return false;
}

StepResult ConvertRun::Skip(FileAtHand& file, const std::wstring& path, FileReason reason) {
    log_.WriteConvertLog(L"処理をスキップしました", {}, 2);
    log_.WriteConvertLog(L"詳細情報", ReasonText(reason), 4);
    log_.WriteConvertLog(L"既存のファイル", path, 4);
    file.report.target = path;
    // No other one's either then.
    const bool isResume = settings_.onConflict == kConflictSkip && !names_.IsSource(path);
    if (reason == FileReason::kAlreadyConverted ||
        (isResume && reason == FileReason::kTargetExists)) {
        names_.AddResult(path, file.entry, false);
    }
    file.Report(FileOutcome::kSkipped, reason);
    return StepResult::kDone;
}

// A run that finds its result from before tells of the damage once more: it is no better now.
StepResult ConvertRun::KeepDamaged(FileAtHand& file, const std::wstring& path,
                                   const std::wstring& damage) {
    log_.WriteConvertLog(L"変換済みのファイルがあります", path, 2);
    file.report.target = path;
    names_.AddResult(path, file.entry, false);
    file.Report(FileOutcome::kConverted, FileReason::kDamaged, damage);
    return StepResult::kDone;
}

StepResult ConvertRun::SaveConvertedPicture(FileAtHand& file, SourceAtHand& source) {
    const WorkEntry& entry = file.entry;
    const ReadResult& read = *source.read;
    const PictureKind picture = KindOf(source);
    if (!CheckDecodeSize(picture.width, picture.height, settings_)) {
        log_.WriteConvertLog(L"詳細情報", {}, 4);
        log_.WriteConvertLog(L"画像の大きさが小さいので処理を中止しました", {}, 4);
        log_.WriteConvertLog(L"画像サイズ", SizeText(picture.width, picture.height), 4);
        file.Report(FileOutcome::kDeclined, FileReason::kTooSmall);
        return StepResult::kNotSaved;
    }
    // What a member lacks is the cause of what its picture lacks.
    const std::wstring& damage = entry.damage.empty() ? read.damage : entry.damage;
    if (!ToleratesDamage(file, damage)) return StepResult::kNotSaved;
    const std::wstring extension = SaveExtension(picture.bitCount, settings_);
    TrialSave trial(read.picture, extension, options_.save);
    const auto isWritten = [&](const std::wstring& path) {
        const EncodedPicture* const encoded = Encoded(file, source);
        return encoded != nullptr ? HaveSameContent(encoded->bytes, path) : trial.IsLike(path);
    };
    const OutputChoice choice = names_.Choose({entry, extension, isWritten});
    if (choice.isSkipped) {
        const bool isTold = file.report.isDamaged && choice.reason == FileReason::kAlreadyConverted;
        return isTold ? KeepDamaged(file, choice.path, damage)
                      : Skip(file, choice.path, choice.reason);
    }
    file.report.target = choice.path;
    file.report.isRenamed = choice.isRenamed || entry.isNumbered;
    file.report.isReplaced = choice.isReplaced;
    log_.WriteConvertLog(L"画像の色数", std::to_wstring(picture.bitCount) + L" bit", 2);
    if (read.frames) {
        const bool arePages = read.frames.kind == FrameKind::kPages;
        log_.WriteConvertLog(
            L"変換する部分",
            L"1 / " + std::to_wstring(read.frames.count) + (arePages ? L" ページ" : L" コマ"), 2);
        file.report.frames = read.frames.count;
    }
    log_.WriteConvertLog(L"保存ファイル名", choice.path, 2);
    if (choice.isRenamed) {
        log_.WriteConvertLog(L"同じ名前のファイルがあるため別名で保存します", {}, 4);
    }
    if (choice.isReplaced) log_.WriteConvertLog(L"既存のファイルを置き換えます", {}, 4);
    DWORD error = ERROR_SUCCESS;
    if (settings_.keepFolders && !MakeFolder(entry.folder)) error = GetLastError();
    if (settings_.onConflict == kConflictOverwrite) MakeWayFor(file, choice.path);
    const FileReason reason = file.report.isDamaged ? FileReason::kDamaged
                              : entry.isNumbered    ? FileReason::kTargetExists
                                                    : choice.reason;
    file.Note(FileOutcome::kConverted, reason, damage);
    if (error == ERROR_SUCCESS) error = SavePicture(file, source, choice.path);
    if (error != ERROR_SUCCESS) {
        log_.WriteConvertLog(L"保存に失敗しました", FileNameOf(choice.path), 2);
        ReportUnwritten(file, error, choice.path);
        return StepResult::kNotSaved;
    }
    names_.AddResult(choice.path, entry, !choice.isReplaced);
    file.Report(FileOutcome::kConverted, reason, damage);
    return StepResult::kDone;
}

}  // namespace tessary
