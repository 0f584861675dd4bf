// The delete list: files picked out of the file list, to be deleted from the disk or merely dropped
// from viewing.
#include <algorithm>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "plugin/modSusie.h"
#include "ui/control/delete_file.h"
#include "ui/control/frmControl.h"

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
}

void frmControl::OpenDeletePanel() {
    deletePanelOpen_ = true;
    SetHeight(kDeletePanelHeight);
    for (Button* const button : {&cmdOK_, &cmdDelList_, &cmdCancel_})
        button->SetEnabled(true);
    ShowFoldedOrNot();
    UpdateToolbar();
}

void frmControl::CloseDeletePanel() {
    deletePanelOpen_ = false;
    for (Button* const button : {&cmdOK_, &cmdDelList_, &cmdCancel_})
        button->SetEnabled(false);
    isRollUp_ ? RollUp() : RollDown();
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

void frmControl::cmdOK_Click() {
    if (ShowMessageBox(L"リスト内の " + std::to_wstring(listDelete_.Count()) +
                           L"個のファイルをディスクから削除します。",
                       MB_OKCANCEL | MB_ICONINFORMATION) != IDOK) {
        return;
    }
    try {
        SusieCollection().UnloadFile();  // plug-ins keep archives open
        for (int i = listDelete_.Count() - 1; i >= 0; --i) {
            const DeleteOutcome outcome = DeleteListedFile(listDelete_.Item(i));
            if (outcome == DeleteOutcome::kAbort) return;
            if (outcome == DeleteOutcome::kDeleted) listDelete_.Remove(i);
        }
        if (listDelete_.Count() == 0) CloseDeletePanel();
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"frmDelete.cmdOK_Click()");
    }
}

}  // namespace tessary
