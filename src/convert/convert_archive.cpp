// Expanding one archive.
#include <algorithm>
#include <map>
#include <optional>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/delete_files.h"
#include "convert/make_folder.h"
#include "convert/plugin_use.h"
#include "plugin/file_stamp.h"
#include "plugin/member_file_name.h"
#include "plugin/source_block.h"

namespace tessary {
namespace {

constexpr int kLastSubstitute = 10;

bool HaveSameContent(const std::wstring& one, const std::wstring& other) {
    const std::optional<FileStamp> stamp = StampOf(one);
    const std::optional<FileStamp> otherStamp = StampOf(other);
    if (!stamp || !otherStamp || stamp->size != otherStamp->size) return false;
    if (stamp->size == 0) return true;
    const OwnedBlock block = ReadWholeFile(one);
    const OwnedBlock otherBlock = ReadWholeFile(other);
    const BlockLock lock(block.Get());
    const BlockLock otherLock(otherBlock.Get());
    return lock && otherLock && std::ranges::equal(lock.Bytes(), otherLock.Bytes());
}

}  // namespace

struct ConvertRun::Expansion {
    clsSusie& archive;
    std::wstring folder;
    bool isNew;  // the folder was made for this archive
    MemberFileNames names;
    // Of the members that are files, by position: below `folder` as if it were empty. Nothing for
    // one that is not wanted or whose name no file can have.
    std::map<int32_t, std::optional<std::wstring>> ownNames;
};

// The folder, or where it cannot be made the first that can of `folder(0)` to `folder(10)`: the
// archive itself may have the name, or another archive of this run. Empty when none can.
std::wstring ConvertRun::MakeExpansionFolder(const std::wstring& folder, bool& isNew) {
    for (int number = -1; number <= kLastSubstitute; ++number) {
        std::wstring candidate = folder;
        if (number >= 0) candidate += L'(' + std::to_wstring(number) + L')';
        isNew = !PathExists(candidate);
        if (expansionFolders_.contains(ToUpper(candidate)) || !MakeFolder(candidate)) continue;
        expansionFolders_.insert(ToUpper(candidate));
        return candidate;
    }
    return {};
}

StepResult ConvertRun::ConvertArchiveFile(const std::wstring& path, const std::wstring& pluginKey,
                                          const std::wstring& expansionFolder) {
    return Step([&](StepResult& result) {
        log_.WriteConvertLog(L"ファイル種別", L"圧縮ファイル", 2);
        if (Values().convert.unpackArchive != 1) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"圧縮ファイルのため展開を中止しました", {}, 2);
            Report(FileOutcome::kDeclined, FileReason::kArchiveNotExpanded);
            return;
        }
        log_.WriteConvertLog(L"使用プラグイン", FileNameOf(pluginKey), 2);
        log_.WriteConvertLog(L"画像の展開先", expansionFolder, 2);
        const PluginUse plugin(pluginKey);
        if (!plugin.Bind(path)) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"[エラー]", plugin.ErrorString(), 2);
            Report(FileOutcome::kFailed, FileReason::kPluginFailed, plugin.ErrorString());
            return;
        }
        const int32_t upperBound = list_.UpperBound();
        list_.Grow(plugin->FileNumber());
        if (!ExpandArchiveFiles(*plugin, expansionFolder, upperBound)) {
            result = StepResult::kStopped;
            Report(FileOutcome::kStopped);
        }
    });
}

bool ConvertRun::ExpandArchiveFiles(clsSusie& archive, const std::wstring& expansionFolder,
                                    int32_t upperBound) {
    const int32_t count = archive.FileNumber();
    if (count < 1) {
        log_.WriteConvertLog(L"[エラー]",
                             L"このアーカイブファイルには有効なファイルがひとつもありません", 2);
        Report(FileOutcome::kFailed, FileReason::kNoMembers);
        return true;
    }
    bool isNew = false;
    const std::wstring folder = MakeExpansionFolder(expansionFolder, isNew);
    if (folder.empty()) {
        log_.WriteConvertLog(L"[エラー]",
                             L"フォルダの作成に失敗しました。圧縮ファイルの展開を中止します", 2);
        Report(FileOutcome::kFailed, FileReason::kNoTargetFolder);
        return true;
    }
    log_.WriteConvertLog(L"合計ファイル数", std::to_wstring(count), 2);
    log_.WriteConvertLog(L"すべてのファイルを展開します", {}, 2);
    Expansion expansion{archive, folder, isNew, {}, {}};
    for (const ListedMember& file : archive.GetExpandFileList()) {
        auto& ownName = expansion.ownNames[file.position];
        if (CheckDecodeFileName(FileNameOf(file.name)))
            ownName = expansion.names.NameFor(file.name);
    }
    for (int32_t index = 1; index <= count; ++index) {
        const WorkEntry entry = ExpandMember(expansion, index);
        const std::wstring& path = entry.path;
        list_.Set(upperBound + index, entry);
        if (path.empty()) continue;
        if (!monitor_.SetProgressBar(upperBound, list_.UpperBound(), index, count)) {
            WriteStopped();
            return false;
        }
        const std::wstring member = archive.Files(index);
        log_.WriteConvertLog(L"解凍に成功しました", member, 4);
        // Told only when the member could not keep its name.
        if (!path.ends_with(L'\\' + member)) log_.WriteConvertLog(L"展開ファイル名", path, 6);
    }
    log_.WriteConvertLog(L"すべてのファイルの解凍が終了しました。", {}, 2);
    return true;
}

WorkEntry ConvertRun::ExpandMember(Expansion& expansion, int32_t index) {
    const std::wstring member = expansion.archive.Files(index);
    const auto file = expansion.ownNames.find(index);
    const bool isFile = file != expansion.ownNames.end();
    WorkEntry entry{.path = {},
                    .source = Entry().source,
                    .member = Entry().member.empty() ? member : Entry().member + L'\\' + member};
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
    if (!CheckDecodeFileName(FileNameOf(member))) {
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
    std::vector<std::wstring> standing;
    while (!expansion.isNew && PathExists(start + name)) {
        standing.push_back(start + name);
        name = *expansion.names.NameFor(member);
    }
    if (const uint32_t result = ResultOf([&] {
            expansion.archive.DecodeArchive(index, expansion.folder, name, TellProgress);
        })) {
        const PluginFailure failure = FailureOf(expansion.archive, result);
        refuse(FileOutcome::kFailed, ReasonOf(failure),
               FailureText(failure, expansion.archive.DllName()));
        WritePluginError(failure, 6);
        return entry;
    }
    std::wstring path = start + name;
    // But what is the same and not on the list, an earlier run has left.
    const auto left = std::ranges::find_if(standing, [&](const std::wstring& other) {
        return !list_.Holds(other) && HaveSameContent(path, other);
    });
    if (left != standing.end()) {
        DeleteFiles(path, true);
        path = *left;
    }
    if (path != start + *file->second) entry.saveName = FileNameOf(*file->second);
    entry.path = path;
    return entry;
}

}  // namespace tessary
