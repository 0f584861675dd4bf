// The dialog that gives a file another name.
#pragma once

#include <functional>
#include <string>

#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class DRename final : private Dialog {
  public:
    // Takes the name that the user has chosen; what is wrong with it, as a text, keeps the dialog
    // open.
    using Accept = std::function<std::wstring(const std::wstring& name)>;

    DRename();

    // Asks for another name than `name`, of which all but the extension is selected. False when the
    // user cancels, or leaves it as it is.
    bool Ask(HWND owner, const std::wstring& name, const Accept& accept);

  private:
    void Dialog_Load() override;
    void Dialog_OK() override;

    std::wstring name_;
    const Accept* accept_ = nullptr;
    TextBox textName_;
};

}  // namespace tessary
