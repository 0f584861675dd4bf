#include "ui/dialogs/DTransfer.h"

#include <algorithm>

#include "app/base/message_box.h"
#include "res/resource.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/form/picture_box.h"

namespace tessary {
namespace {

// The digits stand on the keyboard as 1 to 9 and 0.
int NumberOfKey(int keyCode) {
    const bool isPad = keyCode >= VK_NUMPAD0 && keyCode <= VK_NUMPAD9;
    const int digit = isPad ? keyCode - VK_NUMPAD0 : keyCode - '0';
    return digit < 0 || digit > 9 ? -1 : (digit + kMostTargetFolders - 1) % kMostTargetFolders;
}

std::wstring KeyOf(int number) {
    return std::to_wstring((number + 1) % kMostTargetFolders);
}

}  // namespace

DTransfer::DTransfer(bool moves) : Dialog(dialogTransfer), moves_(moves) {}

bool DTransfer::Ask(HWND owner, const std::wstring& subject, const std::wstring& start,
                    const Accept& accept) {
    subject_ = subject;
    start_ = start;
    accept_ = &accept;
    return ShowModal(owner) == IDOK;
}

void DTransfer::Dialog_Load() {
    const std::wstring what = moves_ ? L"移動" : L"コピー";
    SetWindowTextW(Handle(), (L"フォルダに" + what).c_str());
    const struct {
        int id;
        std::wstring text;
    } texts[] = {
        {transferSubject, what + L"するファイル: " + subject_},
        {transferLabel, what + L"先のフォルダ(&F):"},
        {transferHint, L"左端の数字のキーを押すと、すぐにそのフォルダへ" + what + L"します。"},
        {IDOK, what + (moves_ ? L"(&M)" : L"(&C)")}};
    for (const auto& [id, text] : texts)
        SetDlgItemTextW(Handle(), id, text.c_str());
    listFolders_.Attach(Handle(), transferFolders);
    listFolders_.FontChanged();
    listFolders_.OnClick([this] { ShowChosen(); });
    listFolders_.OnDoubleClick([this] { Dialog_OK(); });
    cmdBrowse_.Attach(Handle(), transferBrowse);
    cmdBrowse_.OnClick([this] { Browse(); });
    cmdDrop_.Attach(Handle(), transferDrop);
    cmdDrop_.OnClick([this] { Drop(); });
    cmdOK_.Attach(Handle(), IDOK);
    cmdCancel_.Attach(Handle(), IDCANCEL);
    const auto takesKey = [this](int keyCode, int shift) { return TakesKey(keyCode, shift); };
    listFolders_.OnKeyDown(takesKey);
    for (Button* const button : {&cmdBrowse_, &cmdDrop_, &cmdOK_, &cmdCancel_})
        button->OnKeyDown(takesKey);
    Fill(-1);
}

std::optional<LRESULT> DTransfer::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // A session that ends does not wait for an answer.
    if (message == WM_ENDSESSION && wParam != FALSE) Close(IDCANCEL);
    const std::optional<LRESULT> answer = Dialog::OnMessage(message, wParam, lParam);
    if (message == WM_DPICHANGED) listFolders_.FontChanged();
    return answer;
}

bool DTransfer::TakesKey(int keyCode, int shift) {
    if (shift != 0) return false;
    if (keyCode == VK_DELETE && listFolders_.HasFocus()) {
        Drop();
        return true;
    }
    const int number = NumberOfKey(keyCode);
    const auto found = std::ranges::find(folders_, number, &TargetFolder::number);
    if (number < 0) return false;
    if (found != folders_.end()) {
        listFolders_.MarkSelected(static_cast<int>(found - folders_.begin()));
        ShowChosen();
        Dialog_OK();
    }
    return true;
}

// Selects the one of that number, else the one that was used last.
void DTransfer::Fill(int number) {
    folders_ = TargetFolders();
    listFolders_.Clear();
    for (const TargetFolder& folder : folders_)
        listFolders_.Add(KeyOf(folder.number) + L"  " + folder.path);
    auto chosen = std::ranges::find(folders_, number, &TargetFolder::number);
    if (chosen == folders_.end())
        chosen = std::ranges::max_element(folders_, {}, &TargetFolder::lastUse);
    if (!folders_.empty()) listFolders_.MarkSelected(static_cast<int>(chosen - folders_.begin()));
    ShowChosen();
    const int first = folders_.empty() ? transferBrowse : transferFolders;
    SendMessageW(Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(Handle(), first)),
                 TRUE);
}

void DTransfer::ShowChosen() {
    const int chosen = listFolders_.Selected();
    const bool isChosen = chosen >= 0;
    cmdOK_.SetEnabled(isChosen);
    cmdDrop_.SetEnabled(isChosen);
    const std::wstring target = isChosen ? L"→ " + folders_[static_cast<size_t>(chosen)].path
                                         : L"[参照] でフォルダを選んでください。";
    SetDlgItemTextW(Handle(), transferTarget, target.c_str());
    const HWND hint = GetDlgItem(Handle(), transferHint);
    ShowWindow(hint, folders_.empty() ? SW_HIDE : SW_SHOWNA);
}

void DTransfer::Dialog_OK() {
    const int chosen = listFolders_.Selected();
    if (chosen < 0 || isAccepting_) return;
    const std::wstring folder = folders_[static_cast<size_t>(chosen)].path;
    isAccepting_ = true;
    const std::wstring problem = (*accept_)(folder);
    isAccepting_ = false;
    if (Handle() == nullptr) return;
    if (problem.empty()) {
        KeepTargetFolder(folder);
        return Close(IDOK);
    }
    ShowMessageBox(problem, MB_ICONEXCLAMATION);
    listFolders_.SetFocus();
}

void DTransfer::Browse() {
    if (isAccepting_) return;
    const int chosen = listFolders_.Selected();
    const std::wstring what = moves_ ? L"移動" : L"コピー";
    const std::wstring folder = BrowseForFolder(
        Handle(), what + L"先のフォルダ", L"ファイルを" + what + L"するフォルダを選んでください。",
        chosen < 0 ? start_ : folders_[static_cast<size_t>(chosen)].path);
    if (folder.empty()) return;
    KeepTargetFolder(folder);
    Fill(-1);
}

void DTransfer::Drop() {
    const int chosen = listFolders_.Selected();
    if (chosen < 0 || isAccepting_) return;
    DropTargetFolder(folders_[static_cast<size_t>(chosen)].path);
    const auto next = static_cast<size_t>(chosen) + 1 < folders_.size() ? chosen + 1 : chosen - 1;
    Fill(next < 0 ? -1 : folders_[static_cast<size_t>(next)].number);
}

}  // namespace tessary
