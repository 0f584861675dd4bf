// The delete list: files picked out of the file list, to be deleted from the disk or merely dropped
// from viewing.
#include <algorithm>
#include <set>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/raised_flag.h"
#include "app/base/task_modal.h"
#include "app/base/text.h"
#include "plugin/modSusie.h"
#include "ui/control/frmControl_busy.h"
#include "ui/control/panel_place.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/screen.h"
#include "ui/form/session_hold.h"

namespace tessary {

void frmControl::AddToDeleteList() {
    const int selected = listFileName_.Selected();
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
    MarkForDeletion(selected);
}

// The toolbar's button waits for the end. What is seen in a fast run nobody can tell.
void frmControl::MarkDuringShow() {
    const BarButton motion = player_.PlayMode();
    if (motion == BarButton::kPlay || motion == BarButton::kReversePlay) return WishMark();
    window_.ShowNote(L"早送りや巻き戻しを止めてから、もう一度押してください。");
}

void frmControl::MarkForDeletion(int index) {
    if (index < 0) return;
    const std::wstring path = listFileName_.Item(index);
    const bool wasSelected = index == listFileName_.Selected();
    OpenDeletePanel();
    const bool isNew = marks_.Add(path);
    if (isNew) listDelete_.Add(path);
    listFileName_.Remove(index);
    CountMarks();
    if (!isNew) window_.ShowNote(FileNameOf(path) + L" は、もう削除リストにあります。");
    // Where the panel is out of sight, as on the full screen.
    if (isNew && !IsVisible()) {
        window_.ShowNote(L"削除リストに追加しました（" + std::to_wstring(listDelete_.Count()) +
                         L" 個）: " + FileNameOf(path));
    }
    if (!wasSelected) return;
    // The next file comes up, so that a heap can be weeded out key by key.
    ShowInPlaceOf(index);
}

// What has come to the place of an entry that was removed.
void frmControl::ShowInPlaceOf(int index) {
    listFileName_.Select(std::min(index, listFileName_.Count() - 1));
    if (listFileName_.Count() == 0) ShowEmptyList();
}

void frmControl::CountMarks() {
    lblMarks_.SetText(std::to_wstring(listDelete_.Count()) + L" 個のファイル");
}

void frmControl::OpenDeletePanel() {
    if (!deletePanelOpen_) PlaceForPanel();
    deletePanelOpen_ = true;
    // It may reach over the main window now, which some window managers leave in front.
    SetWindowPos(Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    for (Button* const button : {&cmdOK_, &cmdDelList_, &cmdCancel_})
        button->SetEnabled(true);
    ShowFoldedOrNot();
    UpdateToolbar();
}

// The panel's buttons must be within reach, and the main window's title and menu in sight.
void frmControl::PlaceForPanel() {
    const Metrics metrics(Handle());
    const int height = metrics.Scale(kDeletePanelHeight);
    RECT title{};
    GetWindowRect(window_.Handle(), &title);
    POINT client{};
    ClientToScreen(window_.Handle(), &client);
    title.bottom = client.y;
    RECT bar = Frame();
    OffsetRect(&bar, -movedBy_.x, -movedBy_.y);  // where it was without the panel
    const PanelPlace place = PlacePanel(bar, height, height - metrics.Scale(kUnfoldedHeight),
                                        ScreenOf(Handle()).rcWork, title);
    panelAbove_ = place.above;
    movedBy_ = {place.frame.left - bar.left, place.frame.top - bar.top};
    SetWindowPos(Handle(), nullptr, place.frame.left, place.frame.top,
                 place.frame.right - place.frame.left, height, SWP_NOZORDER | SWP_NOACTIVATE);
    const SIZE size = ClientSize();
    Form_Resize(size.cx, size.cy);  // the panel may only have changed sides
}

void frmControl::CloseDeletePanel() {
    deletePanelOpen_ = false;
    panelAbove_ = false;
    for (Button* const button : {&cmdOK_, &cmdDelList_, &cmdCancel_})
        button->SetEnabled(false);
    isRollUp_ ? RollUp() : RollDown();
    const RECT frame = Frame();
    const POINT back = std::exchange(movedBy_, {});
    SetWindowPos(Handle(), nullptr, frame.left - back.x, frame.top - back.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (IsVisible()) MoveOntoScreen();
    UpdateToolbar();
}

void frmControl::listDelete_DblClick() {
    const int selected = listDelete_.Selected();
    if (selected < 0) return;
    PutBack(listDelete_.Item(selected));
}

void frmControl::PutBack(const std::wstring& path) {
    listFileName_.Add(path);
    TakeMark(path);
    if (listDelete_.Count() == 0 && deletePanelOpen_) CloseDeletePanel();
}

// It is another picture now than the one that was to be deleted.
void frmControl::FileSaved(const std::wstring& path) {
    const std::wstring marked = marks_.MarkOf(path);
    if (marked.empty()) return;
    PutBack(marked);
    window_.ShowNote(L"保存したので、削除リストから一覧に戻しました: " + FileNameOf(marked));
}

void frmControl::cmdCancel_Click() {
    for (int i = 0; i < listDelete_.Count(); ++i)
        listFileName_.Add(listDelete_.Item(i));
    listDelete_.Clear();
    // What waits for a load's end was about the same files.
    wishes_.deletion = false;
    wishes_.marks.clear();
    marks_.Clear();
    CloseDeletePanel();
}

void frmControl::cmdDelList_Click() {
    listDelete_.Clear();
    cmdCancel_Click();
}

// Esc is pressed in passing; the collected files would be spread over the list's end.
void frmControl::AskToCancel() {
    if (ShowMessageBox(L"削除リストの " + std::to_wstring(listDelete_.Count()) +
                           L" 個のファイルを、すべて一覧に戻しますか？",
                       MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES) {
        CoolBar_ButtonClick(BarButton::kCancelDelete);
    }
}

std::vector<std::wstring> frmControl::MarkedFiles() const {
    std::vector<std::wstring> paths;
    paths.reserve(static_cast<size_t>(listDelete_.Count()));
    for (int i = 0; i < listDelete_.Count(); ++i)
        paths.push_back(listDelete_.Item(i));
    return paths;
}

// Deletes what the question was about, whatever happens to the list meanwhile.
void frmControl::cmdOK_Click() {
    if (IsLoading()) {
        wishes_.deletion = true;
        return WishIsThere();
    }
    const std::vector<std::wstring> paths = MarkedFiles();
    if (paths.empty()) return;  // the last one was put back before its load's end
    if (ShowMessageBox(L"リスト内の " + std::to_wstring(paths.size()) +
                           L"個のファイルをディスクから削除します。",
                       MB_OKCANCEL | MB_ICONINFORMATION | MB_DEFBUTTON2) == IDOK) {
        if (const std::optional<int> gap = TryToDelete(paths)) ShowInPlaceOf(*gap);
    }
    // The next Enter means the next picture, and not the same question again.
    if (cmdOK_.HasFocus()) FocusPart(listFileName_.Handle());
    window_.CloseIfAsked();
}

// The place of the selected file in the list, when it is among those that are gone.
std::optional<int> frmControl::TryToDelete(const std::vector<std::wstring>& paths) {
    std::vector<std::wstring> deleted;
    try {
        DeleteFromDisk(paths, deleted);
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"frmDelete.cmdOK_Click()");
    }
    if (Handle() == nullptr) return std::nullopt;
    if (deletePanelOpen_ && listDelete_.Count() == 0) CloseDeletePanel();
    return RemoveListed(deleted);
}

// Lists may have a file several times, in other spellings too.
std::optional<int> frmControl::RemoveListed(const std::vector<std::wstring>& deleted) {
    std::set<std::wstring> names;  // asking the system of every file listed would take too long
    std::set<std::wstring> entries;
    for (const std::wstring& path : deleted) {
        names.insert(ToUpper(FileNameOf(path)));
        entries.insert(EntryOf(path));
    }
    const int selected = listFileName_.Selected();
    std::optional<int> gap;
    for (int i = listFileName_.Count() - 1; i >= 0 && !names.empty(); --i) {
        const std::wstring path = listFileName_.Item(i);
        if (!names.contains(ToUpper(FileNameOf(path))) || !entries.contains(EntryOf(path))) {
            continue;
        }
        listFileName_.Remove(i);
        if (i == selected) gap = i;
        if (gap && i < selected) --*gap;
    }
    return gap;
}

bool frmControl::MayClose() {
    if (!formLoaded_ || listDelete_.Count() == 0) return true;
    if (askingToClose_) return false;
    const RaisedFlag asking(askingToClose_);
    const std::vector<std::wstring> paths = MarkedFiles();
    switch (ShowMessageBox(L"削除リストに " + std::to_wstring(paths.size()) +
                               L" 個のファイルがあります。\r\n\r\n"
                               L"[はい]をクリックするとディスクから削除して終了します。\r\n"
                               L"[いいえ]をクリックすると削除しないで終了します。\r\n"
                               L"[キャンセル]をクリックすると終了しません。",
                           MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON3)) {
        case IDYES: {
            const std::optional<int> gap = TryToDelete(paths);
            if (Handle() == nullptr || listDelete_.Count() == 0) return true;
            if (gap) ShowInPlaceOf(*gap);
            return false;
        }
        case IDNO:
            return true;
        default:
            return false;
    }
}

// From the last one to the first; the user may break off at a file that cannot be deleted, and at
// any time once it takes long.
void frmControl::DeleteFromDisk(const std::vector<std::wstring>& paths,
                                std::vector<std::wstring>& deleted) {
    const Busy busy(*this, L"削除しています");
    const SessionHold session(Handle(), L"ファイルを削除しています。");
    DisableParts();
    const TaskModal others(nullptr);
    frmProgress shown(Handle(), L"ファイルの削除");
    SusieCollection().UnloadFile();  // plug-ins keep archives open
    const auto total = static_cast<int32_t>(paths.size());
    int32_t done = 0;
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) {
        const DeleteOutcome outcome = DeleteMarked(*path);
        if (outcome == DeleteOutcome::kAbort) return;
        if (outcome == DeleteOutcome::kDeleted) {
            deleted.push_back(*path);
            TakeMark(*path);
        }
        shown.Tell(*path, ++done, total);
        if (!window_.Breathe() || shown.IsStopped()) return;
    }
}

DeleteOutcome frmControl::DeleteMarked(const std::wstring& path) {
    if (!marks_.HasChanged(path)) return DeleteListedFile(path);
    switch (ShowMessageBox(L"ファイル " + path +
                               L" は、削除リストに入れた後に変更されています。\r\n"
                               L"\r\n"
                               L"[はい]をクリックするとディスクから削除します。\r\n"
                               L"[いいえ]をクリックすると削除しないで一覧に戻します。\r\n"
                               L"[キャンセル]をクリックすると削除処理を中断します。",
                           MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON3)) {
        case IDYES:
            return DeleteListedFile(path);
        case IDNO:
            PutBack(path);
            return DeleteOutcome::kIgnore;
        default:
            return DeleteOutcome::kAbort;
    }
}

void frmControl::TakeMark(const std::wstring& path) {
    marks_.Remove(path);
    for (int i = listDelete_.Count() - 1; i >= 0; --i) {
        if (listDelete_.Item(i) != path) continue;
        listDelete_.Remove(i);
        CountMarks();
        return;
    }
}

}  // namespace tessary
