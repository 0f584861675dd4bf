// The version window of the plug-ins.
#pragma once

#include <vector>

#include "ui/form/dialog.h"
#include "ui/form/list_view.h"
#include "ui/form/simple_controls.h"
#include "ui/options/plugin_list.h"

namespace tessary {

class frmSPIAbout final : private Dialog {
  public:
    frmSPIAbout();

    // Shows all loaded plug-ins over `owner` until the user closes it.
    void Show(HWND owner) { ShowModal(owner); }

  private:
    void Dialog_Load() override;
    void ShowSelection();
    void aboutPluginCopy_Click();

    std::vector<PluginFacts> plugins_;
    Label count_;
    ListView list_;
    TextBox facts_;
    Button copy_;
};

}  // namespace tessary
