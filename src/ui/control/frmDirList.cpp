#include "ui/control/frmDirList.h"

#include "res/resource.h"

namespace tessary {

frmDirList::frmDirList(HWND owner) : ProgressDialog(dialogDirList, owner) {}

void frmDirList::Dialog_Load() {
    lblFolder_.Attach(Handle(), dirListFolder);
    lblCount_.Attach(Handle(), dirListCount);
}

void frmDirList::ShowProgress(const std::wstring& folder, size_t count) {
    if (!IsTimeToTell()) return;
    if (lblFolder_.Text() != folder) lblFolder_.SetText(folder);
    lblCount_.SetText(std::to_wstring(count) + L" 個のファイルを調べました");
}

}  // namespace tessary
