#include "ui/dialogs/progress_dialog.h"

namespace tessary {

ProgressDialog::~ProgressDialog() {
    if (Handle() == nullptr || !IsWindow(owner_)) return;
    // While every other window is disabled, closing the active one would bring another program to
    // the front.
    const bool wasDisabled = EnableWindow(owner_, TRUE) != FALSE;
    if (GetActiveWindow() == Handle()) SetActiveWindow(owner_);
    Close(IDCANCEL);
    if (wasDisabled) EnableWindow(owner_, FALSE);
}

bool ProgressDialog::IsTimeToTell() {
    const DWORD now = GetTickCount();
    if (now - start_ < kDelay || now - lastTold_ < kInterval) return false;
    lastTold_ = now;
    return Handle() != nullptr || Show(owner_);
}

}  // namespace tessary
