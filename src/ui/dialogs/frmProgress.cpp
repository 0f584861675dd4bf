#include "ui/dialogs/frmProgress.h"

#include <utility>

#include "res/resource.h"

namespace tessary {

frmProgress::frmProgress(HWND owner, std::wstring caption)
    : ProgressDialog(dialogProgress, owner), owner_(owner), caption_(std::move(caption)) {}

void frmProgress::Dialog_Load() {
    SetWindowTextW(Handle(), caption_.c_str());
    lblSubject_.Attach(Handle(), progressSubject);
    progress_.Attach(Handle(), progressBar);
    if (owner_ != nullptr) taskbar_.emplace(owner_);
}

void frmProgress::Tell(const std::wstring& subject, int32_t position, int32_t maximum) {
    if (!IsTimeToTell()) return;
    if (lblSubject_.Text() != subject) lblSubject_.SetText(subject);
    progress_.SetProgress(position, maximum);
    if (taskbar_) taskbar_->SetProgress(position, maximum);
}

}  // namespace tessary
