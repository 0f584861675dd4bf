// What the control bar does with files on the disk, by commands about what is shown.
#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/task_modal.h"
#include "app/base/write_error.h"
#include "app/settings/modValue.h"
#include "files/move_file.h"
#include "picture/ahead/pictures_ahead.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/control/file_deletion.h"
#include "ui/control/frmControl_busy.h"
#include "ui/dialogs/DRename.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/activity.h"
#include "ui/form/clipboard.h"
#include "ui/form/menu.h"
#include "ui/form/session_hold.h"
#include "ui/form/show_in_folder.h"
#include "ui/form/worker.h"

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
    RegisterTransferCommands();
    const auto isListed = [this] {
        return formLoaded_ && (!contextFile_.empty() || (!shownPath_.empty() && !listsChange_));
    };
    window_.Commands().Register(commandRename,
                                {.run = [this] { RenameShown(); }, .enabled = isListed});
    window_.Commands().Register(
        commandCopyPath,
        {.run = [this] { CopyPath(); }, .enabled = isListed, .whileLoading = true});
    window_.Commands().Register(commandShowInFolder, {.run =
                                                          [this] {
                                                              const auto paths = TargetFiles();
                                                              if (paths.empty()) return;
                                                              ShowInFolder(window_.DialogOwner(),
                                                                           paths.front());
                                                          },
                                                      .enabled = isListed,
                                                      .whileLoading = true});
    window_.Commands().Register(
        commandUndo, {.run = [this] { UndoLast(); },
                      .enabled = [this] { return formLoaded_ && history_.Last() != nullptr; },
                      .caption = [this] { return UndoCaption(); }});
}

// What the user sees is what he means, not what comes up next.
std::vector<std::wstring> frmControl::TargetFiles() const {
    if (sequence_.Files().ChosenCount() > 0) return sequence_.Files().ChosenTexts();
    if (!contextFile_.empty()) return {contextFile_};
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
    follower_.LookAnew();
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

// About the chosen files, or the entry that the right click has selected.
void frmControl::ShowListMenu(POINT place, bool isOfMembers) {
    const int entry = sequence_.Files().Cursor();
    if (entry < 0 || listsChange_) return;
    const UniqueMenu window = LoadMenuResource(isOfMembers ? menuMembersWindow : menuListWindow);
    const HMENU popup = GetSubMenu(window.Get(), 0);
    if (!isOfMembers) contextFile_ = sequence_.Files().Text(entry);
    window_.Commands().ShowState(popup);
    const int chosen = TrackPopupMenuEx(popup, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y,
                                        Handle(), nullptr);
    // What would be put off to the end of a load would be about another file then.
    const bool isPutOff = chosen != 0 && IsReadUnderWay() && !window_.Commands().IsEnabled(chosen);
    if (isPutOff) window_.ShowNote(L"読み込みが終わってから、もう一度選んでください。");
    if (chosen != 0 && !isPutOff) window_.Commands().Run(chosen);
    contextFile_.clear();
}

// --- Names and paths ---

void frmControl::CopyPath() {
    std::wstring text;
    for (const std::wstring& path : TargetFiles()) {
        if (!text.empty()) text += L"\r\n";
        text += path;
        const int member = sequence_.IsInArchive() && !sequence_.HasPages() &&
                                   sequence_.Archive() == path &&
                                   sequence_.Files().ChosenCount() == 0
                               ? sequence_.Members().Cursor()
                               : -1;
        if (member >= 0) text += L'\\' + sequence_.Members().Text(member);
    }
    if (text.empty()) return;
    CopyTextToClipboard(window_.Handle(), text);
    window_.ShowNote(L"パスをコピーしました。");
}

void frmControl::RenameShown() {
    const std::vector<std::wstring> paths = TargetFiles();
    if (paths.empty()) return;
    if (paths.size() > 1) return window_.ShowNote(L"名前の変更は 1 個ずつです。");
    const std::wstring& path = paths.front();
    player_.HaltTimer();
    EndMotion();
    std::wstring newPath;
    DRename dialog;
    const bool isRenamed =
        dialog.Ask(window_.DialogOwner(), FileNameOf(path), [&](const std::wstring& name) {
            newPath = FolderOf(path) + name;
            return RenameOnDisk(path, newPath);
        });
    if (isRenamed) {
        history_.Add({.kind = FileAct::Kind::kRename,
                      .steps = {{.file = {.path = path, .now = newPath}}},
                      .list = listNumber_});
        FileRenamed(path, newPath);
        window_.ShowNote(L"名前を変えました: " + FileNameOf(newPath));
    }
    window_.CloseIfAsked();
}

// What went wrong; empty when nothing has.
std::wstring frmControl::RenameOnDisk(const std::wstring& path, const std::wstring& newPath) {
    DWORD error = ERROR_SUCCESS;
    WhileFilesChange({.what = L"名前を変えています",
                      .session = L"ファイルの名前を変えています。",
                      .caption = L"名前の変更"},
                     [&](const DeletionNews&) {
                         error = CallInBackground<DWORD>(
                                     [path, newPath] { return RenameFile(path, newPath); },
                                     [] { return true; })
                                     .value_or(ERROR_CANCELLED);
                     });
    if (error == ERROR_SUCCESS) return {};
    if (error == ERROR_FILE_EXISTS) {
        return L"同じ名前のファイルかフォルダがあります。\r\n" + FileNameOf(newPath);
    }
    if (!PathExists(path)) return L"ファイルが見つかりません。\r\n" + path;
    return L"名前を変えられません。\r\n" + WriteErrorText(error);
}

// The list keeps its order; what is shown stays so, by its new name.
void frmControl::FileRenamed(const std::wstring& path, const std::wstring& newPath) {
    window_.TellMoved(path, newPath);
    const int index = sequence_.Files().IndexOf(path);
    if (index < 0) return;
    const bool isShown = shownPath_ == path;
    const EntryOrder& order = fileOrder_;
    {
        const RedrawHold hold(listFileName_);
        const bool isInOrder = sequence_.IsInOrder(order);
        sequence_.Rename(path, newPath);
        if (isInOrder) sequence_.SortBy(order);
    }
    ShowFoldedOrNot();
    if (isShown) ShowRenamed(sequence_.Files().IndexOf(newPath));
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
