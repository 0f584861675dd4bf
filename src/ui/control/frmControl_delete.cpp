// The control bar around its delete list.
#include <algorithm>

#include "app/base/message_box.h"
#include "ui/control/frmControl_busy.h"

namespace tessary {

void frmControl::AddToDeleteList() {
    if (sequence_.Files().ChosenCount() > 0) return deleteList_.MarkChosen();
    const int selected = sequence_.Files().Cursor();
    if (selected < 0) {
        ShowMessageBox(
            L"ファイルが選択されていません。削除するファイルをリストから選んでください。",
            MB_ICONEXCLAMATION);
        return;
    }
    if (window_.PictureShown() && shownPath_.empty()) {
        window_.ShowNote(L"表示しているのは一覧のファイルではありません。");
        return;
    }
    deleteList_.Mark(selected);
}

// The toolbar's button waits for the end. What is seen in a fast run nobody can tell.
void frmControl::MarkDuringShow() {
    const BarButton motion = player_.PlayMode();
    if (motion == BarButton::kPlay || motion == BarButton::kReversePlay) return WishMark();
    window_.ShowNote(L"早送りや巻き戻しを止めてから、もう一度押してください。");
}

void frmControl::cmdOK_Click() {
    if (IsLoading()) {
        wishes_.deletion = true;
        return WishIsThere();
    }
    if (sequence_.Marks().IsEmpty()) return;  // the last one was put back before its load's end
    deleteList_.AskToDeleteAll();
    // The next Enter means the next picture, and not the same question again.
    if (deletePanel_.IsDeletionFocused()) FocusPart(listFileName_.Handle());
    window_.CloseIfAsked();
}

// --- What the list needs of the bar ---

void frmControl::SetPanelOpen(bool open) {
    if (Handle() == nullptr || (!open && !place_.IsPanelOpen())) return;
    deletePanel_.SetEnabled(open);
    open ? place_.OpenPanel() : place_.ClosePanel();
    UpdateToolbar();
}

void frmControl::ShowInPlaceOf(int index) {
    FileSequence::FileEntries& files = sequence_.Files();
    files.Select(std::min(index, files.Count() - 1));
    if (files.IsEmpty()) ShowEmptyList();
}

void frmControl::ForgetDeletion() {
    wishes_.deletion = false;
    wishes_.marks.clear();
}

void frmControl::WhileDeleting(const std::function<void(const DeletionNews&)>& deletion) {
    WhileFilesChange({.what = L"削除しています",
                      .session = L"ファイルを削除しています。",
                      .caption = L"ファイルの削除"},
                     deletion);
}

}  // namespace tessary
