// The delete list: files picked out of the file list, to be deleted from the disk or merely dropped
// from viewing.
#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/task_modal.h"
#include "plugin/modSusie.h"
#include "ui/control/delete_file.h"
#include "ui/control/frmControl_busy.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/form/screen.h"

namespace tessary {

void frmControl::AddToDeleteList() {
    const int selected = listFileName_.Selected();
    if (selected < 0) {
        ShowMessageBox(
            L"ファイルが選択されていません。削除するファイルをリストから選んでください。",
            MB_ICONEXCLAMATION);
        return;
    }
    OpenDeletePanel();
    listDelete_.Add(listFileName_.Item(selected));
    listFileName_.Remove(selected);
    // The next file comes up, so that a heap can be weeded out key by key.
    listFileName_.Select(std::min(selected, listFileName_.Count() - 1));
    if (listFileName_.Count() == 0) ShowEmptyList();
}

void frmControl::OpenDeletePanel() {
    deletePanelOpen_ = true;
    SetHeight(kDeletePanelHeight);
    RiseForPanel();
    // It reaches over the main window now, which some window managers leave in front.
    SetWindowPos(Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    for (Button* const button : {&cmdOK_, &cmdDelList_, &cmdCancel_})
        button->SetEnabled(true);
    ShowFoldedOrNot();
    UpdateToolbar();
}

void frmControl::MoveBy(int pixelsDown) {
    const RECT frame = Frame();
    SetWindowPos(Handle(), nullptr, frame.left, frame.top + pixelsDown, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// At the lower edge of the screen the panel's buttons would be out of reach.
void frmControl::RiseForPanel() {
    const RECT work = ScreenOf(Handle()).rcWork;
    const RECT frame = Frame();
    const LONG below = std::max<LONG>(frame.bottom - work.bottom, 0);
    const LONG room = std::max<LONG>(frame.top - work.top, 0);
    const auto rise = static_cast<int>(std::min(below, room));
    risenBy_ += rise;
    if (rise != 0) MoveBy(-rise);
}

void frmControl::CloseDeletePanel() {
    deletePanelOpen_ = false;
    for (Button* const button : {&cmdOK_, &cmdDelList_, &cmdCancel_})
        button->SetEnabled(false);
    isRollUp_ ? RollUp() : RollDown();
    MoveBy(std::exchange(risenBy_, 0));
    UpdateToolbar();
}

void frmControl::listDelete_DblClick() {
    const int selected = listDelete_.Selected();
    if (selected < 0) return;
    listFileName_.Add(listDelete_.Item(selected));
    listDelete_.Remove(selected);
    if (listDelete_.Count() == 0) CloseDeletePanel();
}

void frmControl::cmdCancel_Click() {
    for (int i = 0; i < listDelete_.Count(); ++i)
        listFileName_.Add(listDelete_.Item(i));
    listDelete_.Clear();
    CloseDeletePanel();
}

void frmControl::cmdDelList_Click() {
    listDelete_.Clear();
    cmdCancel_Click();
}

// Deletes what the question was about, whatever happens to the list meanwhile.
void frmControl::cmdOK_Click() {
    if (busy_ > 0) return;
    std::vector<std::wstring> paths;
    paths.reserve(static_cast<size_t>(listDelete_.Count()));
    for (int i = 0; i < listDelete_.Count(); ++i)
        paths.push_back(listDelete_.Item(i));
    if (ShowMessageBox(L"リスト内の " + std::to_wstring(paths.size()) +
                           L"個のファイルをディスクから削除します。",
                       MB_OKCANCEL | MB_ICONINFORMATION) != IDOK) {
        return;
    }
    try {
        DeleteFromDisk(paths);
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"frmDelete.cmdOK_Click()");
    }
    if (Handle() != nullptr && deletePanelOpen_ && listDelete_.Count() == 0) CloseDeletePanel();
    window_.CloseIfAsked();
}

// From the last one to the first; the user may break off at a file that cannot be deleted, and at
// any time once it takes long.
void frmControl::DeleteFromDisk(const std::vector<std::wstring>& paths) {
    const Busy busy(*this, L"削除しています");
    const TaskModal others(nullptr);
    frmProgress shown(Handle(), L"ファイルの削除");
    SusieCollection().UnloadFile();  // plug-ins keep archives open
    const auto total = static_cast<int32_t>(paths.size());
    int32_t done = 0;
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) {
        const DeleteOutcome outcome = DeleteListedFile(*path);
        if (outcome == DeleteOutcome::kAbort) return;
        if (outcome == DeleteOutcome::kDeleted) ForgetDeleted(*path);
        shown.Tell(*path, ++done, total);
        if (!window_.Breathe() || shown.IsStopped()) return;
    }
}

void frmControl::ForgetDeleted(const std::wstring& path) {
    for (int i = listDelete_.Count() - 1; i >= 0; --i) {
        if (listDelete_.Item(i) != path) continue;
        listDelete_.Remove(i);
        return;
    }
}

}  // namespace tessary
