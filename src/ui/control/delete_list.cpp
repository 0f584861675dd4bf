#include "ui/control/delete_list.h"

#include <algorithm>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/raised_flag.h"
#include "app/settings/modValue.h"

namespace tessary {
namespace {

// Whether the user wants these files of the list deleted, as he has chosen it.
bool AskToDelete(const std::vector<std::wstring>& paths) {
    const int16_t way = Values().general.deleteFinally;
    if (way == kDeleteForGood) return FileDeletion::AskForGood(paths);
    return ShowMessageBox(L"リスト内の " + std::to_wstring(paths.size()) +
                              (way == kDeleteToBin ? L" 個のファイルをごみ箱に移動します。"
                                                   : L"個のファイルをディスクから削除します。"),
                          MB_OKCANCEL | MB_ICONINFORMATION | MB_DEFBUTTON2) == IDOK;
}

}  // namespace

void DeleteList::Mark(int index) {
    if (index < 0) return;
    const std::wstring name = FileNameOf(sequence_.Files().Text(index));
    const bool wasSelected = index == sequence_.Files().Cursor();
    host_.SetPanelOpen(true);
    if (!sequence_.MarkFile(index)) {
        host_.ShowNote(name + L" は、もう削除リストにあります。");
    } else if (!host_.IsPanelInSight()) {  // as on the full screen
        host_.ShowNote(L"削除リストに追加しました（" + std::to_wstring(sequence_.Marks().Count()) +
                       L" 個）: " + name);
    }
    // The next file comes up, so that a heap can be weeded out key by key.
    if (wasSelected) host_.ShowInPlaceOf(index);
}

void DeleteList::MarkChosen() {
    const std::vector<int> chosen = sequence_.Files().ChosenIndexes();
    if (chosen.empty()) return;
    const int selected = sequence_.Files().Cursor();
    const auto before = std::ranges::lower_bound(chosen, selected);
    const bool wasSelected = before != chosen.end() && *before == selected;
    host_.SetPanelOpen(true);
    const int marked = sequence_.MarkFiles(chosen);
    if (!host_.IsPanelInSight()) {
        host_.ShowNote(std::to_wstring(marked) + L" 個のファイルを削除リストに追加しました（計 " +
                       std::to_wstring(sequence_.Marks().Count()) + L" 個）。");
    }
    if (wasSelected) host_.ShowInPlaceOf(selected - static_cast<int>(before - chosen.begin()));
}

void DeleteList::PutBack(const std::wstring& path) {
    sequence_.PutBack(path);
    if (sequence_.Marks().IsEmpty()) host_.SetPanelOpen(false);
}

void DeleteList::PutAllBack() {
    host_.ForgetDeletion();
    sequence_.PutAllBack();
    host_.SetPanelOpen(false);
}

// Esc is pressed in passing; the collected files would be spread over the list's end.
void DeleteList::AskToPutAllBack() {
    if (ShowMessageBox(L"削除リストの " + std::to_wstring(sequence_.Marks().Count()) +
                           L" 個のファイルを、すべて一覧に戻しますか？",
                       MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES) {
        PutAllBack();
    }
}

void DeleteList::DropAll() {
    sequence_.DropMarks();
    PutAllBack();
}

// It is another picture now than the one that was to be deleted.
void DeleteList::FileSaved(const std::wstring& path) {
    const std::wstring marked = sequence_.Marks().MarkOf(path);
    if (marked.empty()) return;
    PutBack(marked);
    host_.ShowNote(L"保存したので、削除リストから一覧に戻しました: " + FileNameOf(marked));
}

// --- Deletion ---

// Deletes what the question was about, whatever happens to the list meanwhile.
void DeleteList::AskToDeleteAll() {
    const std::vector<std::wstring> paths = sequence_.Marks().Texts();
    if (AskToDelete(paths)) {
        if (const std::optional<int> gap = TryToDelete(paths)) host_.ShowInPlaceOf(*gap);
    }
}

bool DeleteList::MayClose() {
    if (sequence_.Marks().IsEmpty()) return true;
    if (askingToClose_) return false;
    const RaisedFlag asking(askingToClose_);
    const std::vector<std::wstring> paths = sequence_.Marks().Texts();
    switch (
        ShowMessageBox(L"削除リストに " + std::to_wstring(paths.size()) +
                           L" 個のファイルがあります。\r\n\r\n"
                           L"[はい]をクリックすると" +
                           (Values().general.deleteFinally == kDeleteToBin ? L"ごみ箱に移動"
                                                                           : L"ディスクから削除") +
                           L"して終了します。\r\n"
                           L"[いいえ]をクリックすると削除しないで終了します。\r\n"
                           L"[キャンセル]をクリックすると終了しません。",
                       MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON3)) {
        case IDYES: {
            const std::optional<int> gap = TryToDelete(paths);
            if (sequence_.Marks().IsEmpty()) return true;
            if (gap) host_.ShowInPlaceOf(*gap);
            return false;
        }
        case IDNO:
            return true;
        default:
            return false;
    }
}

// The place of the selected file in the sequence, when it is among those that are gone.
std::optional<int> DeleteList::TryToDelete(const std::vector<std::wstring>& paths) {
    FileDeletion deletion(Values().general.deleteFinally != kDeleteToBin);
    std::vector<std::wstring> deleted;
    try {
        host_.WhileDeleting([&](const DeleteListHost::DeletionNews& tell) {
            DeleteFromDisk(deletion, paths, deleted, tell);
        });
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"frmDelete.cmdOK_Click()");
    }
    host_.Remember(deletion.Binned());
    if (sequence_.Marks().IsEmpty()) host_.SetPanelOpen(false);
    return sequence_.RemoveDeleted(deleted);
}

void DeleteList::DeleteFromDisk(FileDeletion& deletion, const std::vector<std::wstring>& paths,
                                std::vector<std::wstring>& deleted,
                                const DeleteListHost::DeletionNews& tell) {
    const std::vector<std::wstring> chosen = deletion.Begin(paths);
    const auto total = static_cast<int32_t>(chosen.size());
    int32_t done = 0;
    for (auto path = chosen.rbegin(); path != chosen.rend(); ++path) {
        const DeleteOutcome outcome = DeleteMarked(*path, deletion);
        if (outcome == DeleteOutcome::kAbort) return;
        if (outcome == DeleteOutcome::kDeleted) {
            deleted.push_back(*path);
            sequence_.Marks().Unmark(*path);
        }
        if (!tell(*path, ++done, total)) return;
    }
}

DeleteOutcome DeleteList::DeleteMarked(const std::wstring& path, FileDeletion& deletion) {
    if (!sequence_.Marks().HasChanged(path)) return deletion.Delete(path);
    switch (ShowMessageBox(L"ファイル " + path +
                               L" は、削除リストに入れた後に変更されています。\r\n"
                               L"\r\n"
                               L"[はい]をクリックすると削除します。\r\n"
                               L"[いいえ]をクリックすると削除しないで一覧に戻します。\r\n"
                               L"[キャンセル]をクリックすると削除処理を中断します。",
                           MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON3)) {
        case IDYES:
            return deletion.Delete(path);
        case IDNO:
            PutBack(path);
            return DeleteOutcome::kIgnore;
        default:
            return DeleteOutcome::kAbort;
    }
}

}  // namespace tessary
