// What the control bar does with files on the disk, by commands about what is shown.
#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/task_modal.h"
#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/control/file_deletion.h"
#include "ui/control/frmControl_busy.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/activity.h"
#include "ui/form/session_hold.h"

namespace tessary {
namespace {

std::wstring NameOfAll(const std::vector<std::wstring>& paths) {
    return paths.size() == 1 ? FileNameOf(paths.front())
                             : std::to_wstring(paths.size()) + L" 個のファイル";
}

}  // namespace

void frmControl::RegisterFileCommands() {
    for (const bool forGood : {false, true}) {
        window_.Commands().Register(forGood ? commandDeleteForGood : commandDelete,
                                    {.run = [this, forGood] { DeleteShown(forGood); },
                                     .enabled = [this] { return formLoaded_ && !listsChange_; },
                                     .whileLoading = true});
    }
    window_.Commands().Register(
        commandUndo, {.run = [this] { UndoLast(); },
                      .enabled = [this] { return formLoaded_ && history_.Last() != nullptr; },
                      .caption = [this] { return UndoCaption(); }});
}

// What the user sees is what he means, not what comes up next.
std::vector<std::wstring> frmControl::TargetFiles() const {
    if (!shownPath_.empty() && sequence_.Files().IndexOf(shownPath_) >= 0) return {shownPath_};
    if (!shownPath_.empty()) {
        window_.ShowNote(FileNameOf(shownPath_) + L" はもう一覧にありません。");
    } else if (IsLoading()) {
        window_.ShowNote(L"読み込みが終わってから、もう一度押してください。");
    } else {
        window_.ShowNote(window_.PictureShown() ? L"表示しているのは一覧のファイルではありません。"
                                                : L"ファイルが表示されていません。");
    }
    return {};
}

void frmControl::WhileFilesChange(const FileWork& texts,
                                  const std::function<void(const DeletionNews&)>& work) {
    const Busy busy(*this, texts.what);
    const SessionHold session(Handle(), texts.session);
    DisableParts();
    const TaskModal others(nullptr);
    frmProgress shown(GetAncestor(Handle(), GA_ROOT), texts.caption);
    SusieCollection().UnloadFile();  // plug-ins keep archives open
    Ahead().Rest();
    window_.Frames().Rest();
    work([&](const std::wstring& path, int32_t done, int32_t total) {
        shown.Tell(path, done, total);
        return window_.Breathe() && !shown.IsStopped();
    });
}

std::vector<ListedStep> frmControl::StepsOf(std::span<const BinnedFile> binned) const {
    std::vector<ListedStep> steps;
    for (const BinnedFile& file : binned) {
        ListedStep step{.file = {.path = file.path, .now = {}, .bin = file}};
        step.index = sequence_.Files().IndexOf(file.path);
        if (step.index >= 0) step.entry = sequence_.Files().At(step.index);
        steps.push_back(std::move(step));
    }
    return steps;
}

void frmControl::Remember(const std::vector<BinnedFile>& binned) {
    history_.Add({.kind = FileAct::Kind::kDeletion, .steps = StepsOf(binned), .list = listNumber_});
}

// --- Deletion ---

void frmControl::DeleteShown(bool forGood) {
    if (!forGood && Values().general.deleteFinally == kDeleteListed) {
        window_.Commands().Run(commandAddToDeleteList);
        return;
    }
    if (keyRepeats_) return;  // each file for itself
    if (player_.IsFast()) {
        window_.ShowNote(L"早送りや巻き戻しを止めてから、もう一度押してください。");
        return;
    }
    const std::vector<std::wstring> paths = TargetFiles();
    if (paths.empty()) return;
    if (IsLoading() || player_.IsPlaying()) {
        wishes_.Delete(paths, forGood);
        if (IsLoading()) window_.ShowNote(L"削除します: " + NameOfAll(paths));
        return WishIsThere();
    }
    if (IsReadUnderWay()) return;
    DeleteFiles(paths, forGood);
}

// Of an archive only a page is seen.
bool frmControl::MayDelete(const std::vector<std::wstring>& paths, bool forGood) const {
    if (forGood || Values().general.deleteFinally == kDeleteForGood)
        return FileDeletion::AskForGood(paths);
    const bool isArchive = sequence_.IsInArchive() && !sequence_.HasPages() && paths.size() == 1 &&
                           paths.front() == sequence_.Archive();
    return !isArchive || ShowMessageBox(L"圧縮ファイル " + FileNameOf(paths.front()) +
                                            L" の全体をごみ箱に移動します。\r\n"
                                            L"表示している画像だけを削除することはできません。",
                                        MB_OKCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDOK;
}

// What has waited, as far as it is still listed.
void frmControl::DeleteListed(std::vector<std::wstring> paths, bool forGood) {
    std::erase_if(paths,
                  [this](const std::wstring& path) { return sequence_.Files().IndexOf(path) < 0; });
    if (!paths.empty()) DeleteFiles(paths, forGood);
}

void frmControl::DeleteFiles(const std::vector<std::wstring>& paths, bool forGood) {
    if (!MayDelete(paths, forGood)) return;
    FileDeletion deletion(forGood || Values().general.deleteFinally != kDeleteToBin);
    const std::vector<std::wstring> chosen = deletion.Begin(paths);
    std::vector<std::wstring> deleted;
    if (!chosen.empty()) {
        WhileDeleting([&](const DeletionNews& tell) {
            int32_t done = 0;
            for (const std::wstring& path : chosen) {
                const DeleteOutcome outcome = deletion.Delete(path);
                if (outcome == DeleteOutcome::kDeleted) deleted.push_back(path);
                if (outcome == DeleteOutcome::kAbort ||
                    !tell(path, ++done, static_cast<int32_t>(chosen.size()))) {
                    return;
                }
            }
        });
    }
    Remember(deletion.Binned());
    if (const std::optional<int> gap = sequence_.RemoveDeleted(deleted)) ShowInPlaceOf(*gap);
    if (!deleted.empty()) {
        const bool isBinned = deletion.Binned().size() == deleted.size();
        window_.ShowNote(
            (isBinned ? L"ごみ箱に移動しました（Ctrl+Z で元に戻せます）: " : L"削除しました: ") +
            NameOfAll(deleted));
    }
    window_.CloseIfAsked();
}

}  // namespace tessary
