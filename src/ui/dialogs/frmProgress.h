// The window that tells how far a long work is whose end is known.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ui/dialogs/progress_dialog.h"
#include "ui/form/progress_bar.h"
#include "ui/form/simple_controls.h"
#include "ui/form/taskbar_progress.h"

namespace tessary {

class frmProgress final : public ProgressDialog {
  public:
    // `caption` says what is being done.
    frmProgress(HWND owner, std::wstring caption);

    // Tells what is at hand, a path for instance, and that `position` of `maximum` is done. Costs
    // next to nothing when called more often than anybody can read.
    void Tell(const std::wstring& subject, int32_t position, int32_t maximum);

  private:
    void Dialog_Load() override;

    HWND owner_;
    std::wstring caption_;
    Label lblSubject_;
    ProgressBar progress_;
    std::optional<TaskbarProgress> taskbar_;
};

}  // namespace tessary
