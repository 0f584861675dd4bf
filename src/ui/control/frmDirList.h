// The small window that tells how far the search through folders is.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class frmDirList final : private Dialog {
  public:
    // `stop` runs when the user wants no more: the button, Esc or the close button.
    explicit frmDirList(std::function<void()> stop);

    using Dialog::Handle;
    using Dialog::Show;

    // The folder being read, and how many files have been looked at.
    void ShowProgress(const std::wstring& folder, size_t count);

  private:
    void Dialog_Load() override;
    void Dialog_Cancel() override;

    std::function<void()> stop_;
    Label lblFolder_;
    Label lblCount_;
};

}  // namespace tessary
