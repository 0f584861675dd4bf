// The small window that tells how far the search through folders is.
#pragma once

#include <cstddef>
#include <string>

#include "ui/dialogs/progress_dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class frmDirList final : public ProgressDialog {
  public:
    explicit frmDirList(HWND owner);

    // The folder being read, and how many files have been looked at.
    void ShowProgress(const std::wstring& folder, size_t count);

  private:
    void Dialog_Load() override;

    Label lblFolder_;
    Label lblCount_;
};

}  // namespace tessary
