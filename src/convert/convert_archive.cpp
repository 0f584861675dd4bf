// Expanding one archive.
#include <set>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "convert/convert_progress.h"
#include "convert/convert_run.h"
#include "convert/decode_filter.h"
#include "convert/make_folder.h"
#include "convert/plugin_use.h"

namespace tessary {
namespace {

constexpr int kLastSubstitute = 10;

}  // namespace

// The folder, or where it cannot be made the first that can of `folder(0)` to `folder(10)`: the
// archive itself may have the name, or another archive of this run. Empty when none can.
std::wstring ConvertRun::MakeExpansionFolder(const std::wstring& folder) {
    for (int number = -1; number <= kLastSubstitute; ++number) {
        std::wstring candidate = folder;
        if (number >= 0) candidate += L'(' + std::to_wstring(number) + L')';
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
            monitor_.CountFile(FileOutcome::kDeclined);
            return;
        }
        log_.WriteConvertLog(L"使用プラグイン", FileNameOf(pluginKey), 2);
        log_.WriteConvertLog(L"画像の展開先", expansionFolder, 2);
        const PluginUse plugin(pluginKey);
        if (!plugin.Bind(path)) {
            result = StepResult::kNotHandled;
            log_.WriteConvertLog(L"[エラー]", plugin.ErrorString(), 2);
            monitor_.CountFile(FileOutcome::kFailed);
            return;
        }
        const int32_t upperBound = list_.UpperBound();
        list_.Grow(plugin->FileNumber());
        if (!ExpandArchiveFiles(*plugin, expansionFolder, upperBound)) {
            result = StepResult::kStopped;
        }
    });
}

bool ConvertRun::ExpandArchiveFiles(clsSusie& archive, const std::wstring& expansionFolder,
                                    int32_t upperBound) {
    const int32_t count = archive.FileNumber();
    if (count < 1) {
        log_.WriteConvertLog(L"[エラー]",
                             L"このアーカイブファイルには有効なファイルがひとつもありません", 2);
        monitor_.CountFile(FileOutcome::kFailed);
        return true;
    }
    const std::wstring folder = MakeExpansionFolder(expansionFolder);
    if (folder.empty()) {
        log_.WriteConvertLog(L"[エラー]",
                             L"フォルダの作成に失敗しました。圧縮ファイルの展開を中止します", 2);
        monitor_.CountFile(FileOutcome::kFailed);
        return true;
    }
    log_.WriteConvertLog(L"合計ファイル数", std::to_wstring(count), 2);
    log_.WriteConvertLog(L"すべてのファイルを展開します", {}, 2);
    MemberFileNames names;
    std::set<int32_t> files;
    for (const ListedMember& file : archive.GetExpandFileList())
        files.insert(file.position);
    for (int32_t index = 1; index <= count; ++index) {
        std::wstring path = ExpandMember(archive, index, files.contains(index), folder, names);
        if (path.empty()) continue;
        list_.Set(upperBound + index, path);
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

std::wstring ConvertRun::ExpandMember(clsSusie& archive, int32_t index, bool isFile,
                                      const std::wstring& folder, MemberFileNames& names) {
    const std::wstring member = archive.Files(index);
    const auto refuse = [&](FileOutcome outcome) {
        log_.WriteConvertLog(L"解凍に失敗しました", member, 4);
        log_.WriteConvertLog(L"詳細情報", {}, 6);
        // What only stands for a folder is no file that somebody misses.
        if (isFile) monitor_.CountFile(outcome);
    };
    if (!CheckDecodeFileName(FileNameOf(member))) {
        refuse(FileOutcome::kDeclined);
        log_.WriteConvertLog(L"このファイルは解凍しない設定になっています", {}, 6);
        return {};
    }
    std::optional<std::wstring> name;
    if (isFile) {
        // What stands in the folder already is somebody's, and not ours to replace or delete.
        do {
            name = names.NameFor(member);
        } while (name && PathExists(folder + L'\\' + *name));
    }
    if (!name) {
        refuse(FileOutcome::kFailed);
        log_.WriteConvertLog(L"ファイル名として使用できない名前です", {}, 6);
        return {};
    }
    if (const uint32_t failure =
            ResultOf([&] { archive.DecodeArchive(index, folder, *name, TellProgress); })) {
        refuse(FileOutcome::kFailed);
        WritePluginError(archive, failure, 6);
        return {};
    }
    return folder + L'\\' + *name;
}

}  // namespace tessary
