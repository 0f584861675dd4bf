// Expanding one archive.
#include <iterator>
#include <map>
#include <memory>
#include <optional>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/delete_files.h"
#include "convert/extraction_record.h"
#include "convert/make_folder.h"
#include "convert/plugin_use.h"
#include "convert/read_failure.h"
#include "plugin/member_file_name.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr int kLastSubstitute = 10;

}  // namespace

struct ConvertRun::Expansion {
    clsSusie& archive;
    std::wstring folder;
    bool isNew;  // the folder was made for this archive
    std::shared_ptr<ExtractionRecord> record;
    MemberFileNames names;
    // Of the members that are files, by position: below `folder` as if it were empty. Nothing for
    // one that is not wanted or whose name no file can have.
    std::map<int32_t, std::optional<std::wstring>> ownNames;
};

// The folder that is called as the archive, or where it cannot be made the first that can of
// `folder(0)` to `folder(10)`: the archive itself may have the name. Of the user's archives of one
// name each gets one, in the order of their paths, so that the order of the list does not matter.
// Empty when none can be made.
std::wstring ConvertRun::MakeExpansionFolder(const WorkEntry& entry, bool& isNew, DWORD& error) {
    const std::wstring folder = entry.folder + FileNameOf(entry.path);
    ptrdiff_t before = 0;
    if (!entry.IsExtracted() && settings_.onConflict != kConflictOverwrite) {
        const std::set<std::wstring>& namesakes = namesakes_[ToUpper(folder)];
        before = std::distance(namesakes.begin(), namesakes.lower_bound(ToUpper(entry.path)));
    }
    int failures = 0;
    for (int number = -1; failures <= kLastSubstitute + 1; ++number) {
        std::wstring candidate = folder;
        if (number >= 0) candidate += L'(' + std::to_wstring(number) + L')';
        isNew = !PathExists(candidate);
        if (!isNew && !IsFolder(candidate)) {
            ++failures;
            continue;
        }
        if (--before >= 0 || expansionFolders_.contains(ToUpper(candidate))) continue;
        if (!MakeFolder(candidate)) {
            error = GetLastError();
            ++failures;
            continue;
        }
        expansionFolders_.insert(ToUpper(candidate));
        return candidate;
    }
    return {};
}

FileReason ConvertRun::ReasonNotToExpand(const WorkEntry& entry) const {
    if (settings_.unpackArchive != 1) return FileReason::kArchiveNotExpanded;
    if (!entry.IsExtracted()) return FileReason::kNone;
    if (entry.depth >= settings_.archiveDepth) return FileReason::kTooDeep;
    return expanded_.Holds(entry.path) ? FileReason::kSameArchive : FileReason::kNone;
}

StepResult ConvertRun::ConvertArchiveFile(FileAtHand& file, const std::wstring& pluginKey) {
    return Step(file, [&](StepResult& result) {
        const WorkEntry& entry = file.entry;
        log_.WriteConvertLog(L"ファイル種別", L"圧縮ファイル", 2);
        if (const FileReason reason = ReasonNotToExpand(entry); reason != FileReason::kNone) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"圧縮ファイルのため展開を中止しました", {}, 2);
            if (reason != FileReason::kArchiveNotExpanded) {
                log_.WriteConvertLog(L"詳細情報", ReasonText(reason), 4);
            }
            // The user does not expect that one of two is left out.
            file.Report(
                reason == FileReason::kSameArchive ? FileOutcome::kSkipped : FileOutcome::kDeclined,
                reason);
            return;
        }
        log_.WriteConvertLog(L"使用プラグイン", SusieCollection().NameOf(pluginKey), 2);
        log_.WriteConvertLog(L"画像の展開先", entry.folder + FileNameOf(entry.path), 2);
        const PluginUse plugin(pluginKey);
        if (!plugin.Bind(entry.path)) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"[エラー]", plugin.ErrorString(), 2);
            file.Report(FileOutcome::kFailed, FileReason::kPluginFailed, plugin.ErrorString());
            return;
        }
        expanded_.Add(entry.path);
        const PluginCondition list = plugin->Condition();
        const int32_t upperBound = list_.Grow(plugin->FileNumber());
        if (!ExpandArchiveFiles(file, *plugin, upperBound)) {
            result = StepResult::kStopped;
            file.Report(FileOutcome::kStopped);
        } else if (list.kind == susie::kConditionDamaged ||
                   list.kind == susie::kConditionVolumeMissing) {
            // Of members that are not on the list nothing else tells.
            log_.WriteConvertLog(L"[警告]", list.text, 2);
            file.report.isDamaged = list.kind == susie::kConditionDamaged;
            file.Report(FileOutcome::kFailed,
                        file.report.isDamaged ? FileReason::kDamaged : FileReason::kVolumeMissing,
                        list.text);
        }
    });
}

bool ConvertRun::ExpandArchiveFiles(FileAtHand& file, clsSusie& archive, int32_t upperBound) {
    const WorkEntry& entry = file.entry;
    const int32_t count = archive.FileNumber();
    if (count < 1) {
        log_.WriteConvertLog(L"[エラー]",
                             L"このアーカイブファイルには有効なファイルがひとつもありません", 2);
        file.Report(FileOutcome::kFailed, FileReason::kNoMembers);
        return true;
    }
    bool isNew = false;
    DWORD error = ERROR_PATH_NOT_FOUND;  // files stand where folders should
    const std::wstring folder = MakeExpansionFolder(entry, isNew, error);
    if (folder.empty()) {
        log_.WriteConvertLog(L"[エラー]",
                             L"フォルダの作成に失敗しました。圧縮ファイルの展開を中止します", 2);
        ReportUnwritten(file, error, entry.folder);
        return true;
    }
    log_.WriteConvertLog(L"合計ファイル数", std::to_wstring(count), 2);
    log_.WriteConvertLog(L"すべてのファイルを展開します", {}, 2);
    // What a run has left that was killed is ours; all else that stands here is somebody's.
    const auto record = std::make_shared<ExtractionRecord>(folder + L'\\');
    record->DeleteLeftovers([&](const std::wstring& path) {
        return list_.Holds(path) || names_.IsSource(path) || names_.SourceOfResult(path);
    });
    Expansion expansion{archive, folder, isNew, record, {}, {}};
    for (const ListedMember& listed : archive.GetExpandFileList()) {
        auto& ownName = expansion.ownNames[listed.position];
        if (CheckDecodeFileName(FileNameOf(listed.name), settings_))
            ownName = expansion.names.NameFor(listed.name);
        if (ownName && ExtractionRecord::IsNameOf(*ownName)) ownName.reset();
    }
    for (int32_t index = 1; index <= count; ++index) {
        const WorkEntry member = ExpandMember(entry, expansion, index);
        const std::wstring& path = member.path;
        list_.Set(upperBound + index, member);
        if (path.empty()) continue;
        names_.Announce(member);
        if (!monitor_.SetProgressBar(upperBound, list_.UpperBound(), index, count)) {
            WriteStopped();
            return false;
        }
        const std::wstring name = archive.Files(index);
        log_.WriteConvertLog(L"解凍に成功しました", name, 4);
        // Told only when the member could not keep its name.
        if (!path.ends_with(L'\\' + name)) log_.WriteConvertLog(L"展開ファイル名", path, 6);
    }
    log_.WriteConvertLog(L"すべてのファイルの解凍が終了しました。", {}, 2);
    return true;
}

WorkEntry ConvertRun::ExpandMember(const WorkEntry& parent, Expansion& expansion, int32_t index) {
    const std::wstring member = expansion.archive.Files(index);
    const auto file = expansion.ownNames.find(index);
    const bool isFile = file != expansion.ownNames.end();
    WorkEntry entry{.path = {},
                    .source = parent.source,
                    .member = parent.member.empty() ? member : parent.member + L'\\' + member,
                    .depth = parent.depth + 1};
    const auto refuse = [&](FileOutcome outcome, FileReason reason, std::wstring text = {}) {
        log_.WriteConvertLog(L"解凍に失敗しました", member, 4);
        log_.WriteConvertLog(L"詳細情報", {}, 6);
        // What only stands for a folder is no file that somebody misses.
        if (!isFile) return;
        if (text.empty()) text = ReasonText(reason);
        monitor_.FileDone({.source = entry.source,
                           .member = entry.member,
                           .outcome = outcome,
                           .reason = reason,
                           .text = std::move(text)});
    };
    if (!CheckDecodeFileName(FileNameOf(member), settings_)) {
        refuse(FileOutcome::kDeclined, FileReason::kNameFiltered);
        log_.WriteConvertLog(L"このファイルは解凍しない設定になっています", {}, 6);
        return entry;
    }
    if (!isFile || !file->second) {
        refuse(FileOutcome::kFailed, FileReason::kBadName);
        log_.WriteConvertLog(L"ファイル名として使用できない名前です", {}, 6);
        return entry;
    }
    // What stands in the folder already is somebody's, and not ours to replace or delete.
    const std::wstring start = expansion.folder + L'\\';
    std::wstring name = *file->second;
    while (!expansion.isNew && PathExists(start + name)) {
        entry.beside.push_back(start + name);
        name = *expansion.names.NameFor(member);
    }
    const std::wstring path = start + name;
    expansion.record->Add(path);
    DWORD error = ERROR_SUCCESS;
    const auto failure = FailureIn(expansion.archive, [&] {
        try {
            expansion.archive.DecodeArchive(index, expansion.folder, name, TellProgress,
                                            options_.save.keepDates != 0);
        } catch (const UnwrittenFileError& unwritten) {
            error = unwritten.SystemError();
        }
    });
    if (error != ERROR_SUCCESS) {
        // The plug-in has done what it should.
        const FileReason reason = ReasonOfWriteError(error, path);
        const std::wstring text = WriteErrorText(error);
        refuse(FileOutcome::kFailed, reason,
               reason == FileReason::kWriteFailed ? text : std::wstring());
        log_.WriteConvertLog(text, {}, 6);
    } else if (failure) {
        refuse(FileOutcome::kFailed, ReasonOf(*failure),
               FailureText(*failure, expansion.archive.DllName()));
        WritePluginError(*failure, 6);
    }
    if (error != ERROR_SUCCESS || failure) {
        DeleteFiles(path, true);
        expansion.record->Remove(path);
        return entry;
    }
    entry.damage = expansion.archive.Damage();
    if (path != start + *file->second) entry.saveName = FileNameOf(*file->second);
    entry.path = path;
    entry.folder = FolderOf(path);
    entry.isNumbered = *file->second != SafeMemberName(member);
    entry.record = expansion.record;
    return entry;
}

}  // namespace tessary
