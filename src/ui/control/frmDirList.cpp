#include "ui/control/frmDirList.h"

#include <utility>

#include "res/resource.h"

namespace tessary {

frmDirList::frmDirList(std::function<void()> stop)
    : Dialog(dialogDirList), stop_(std::move(stop)) {}

void frmDirList::Dialog_Load() {
    lblFolder_.Attach(Handle(), dirListFolder);
    lblCount_.Attach(Handle(), dirListCount);
}

void frmDirList::Dialog_Cancel() {
    stop_();
}

void frmDirList::ShowProgress(const std::wstring& folder, size_t count) {
    if (lblFolder_.Text() != folder) lblFolder_.SetText(folder);
    lblCount_.SetText(std::to_wstring(count) + L" 個のファイルを調べました");
}

}  // namespace tessary
