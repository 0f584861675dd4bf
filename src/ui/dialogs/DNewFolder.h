// The dialog that makes a folder.
#pragma once

#include <string>

#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class DNewFolder final : private Dialog {
  public:
    DNewFolder();

    // Asks for a name and makes the folder in `parent`. The new folder's full path; empty when the
    // user cancels. What goes wrong is told, and the dialog stays.
    std::wstring Make(HWND owner, const std::wstring& parent);

  private:
    void Dialog_Load() override;
    void Dialog_OK() override;

    std::wstring parent_;
    std::wstring made_;
    TextBox textName_;
};

}  // namespace tessary
