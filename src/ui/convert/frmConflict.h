// Asks what to do about a name that is in use.
#pragma once

#include <string>

#include "convert/convert_monitor.h"
#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class frmConflict final : private Dialog {
  public:
    frmConflict();

    // kStop also when the window is closed.
    ConflictAnswer Ask(HWND owner, const ConflictQuestion& question);
    // Whether the user wants the same for all that follow.
    bool IsForAll() const { return isForAll_; }

  private:
    void Dialog_Load() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Answer(ConflictAnswer answer);

    const ConflictQuestion* question_ = nullptr;
    ConflictAnswer answer_ = ConflictAnswer::kStop;
    bool isForAll_ = false;
    Button conflictFreeName_;
    Button conflictReplace_;
    Button conflictSkip_;
    Button conflictForAll_;
};

}  // namespace tessary
