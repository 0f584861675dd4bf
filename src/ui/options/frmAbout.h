// The version window of the program.
#pragma once

#include "ui/form/dialog.h"
#include "ui/form/list_view.h"
#include "ui/form/metrics.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class frmAbout final : private Dialog {
  public:
    frmAbout();

    // Shows it over `owner` until the user closes it.
    void Show(HWND owner) { ShowModal(owner); }

  private:
    void Dialog_Load() override;
    void ShowIcon();
    void ShowLicence();
    void SetLine(int id, const std::wstring& text) const;

    UniqueIcon icon_;
    ListView libraries_;
    TextBox licence_;
};

}  // namespace tessary
