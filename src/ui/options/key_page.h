// The page with the keys of all commands.
#pragma once

#include <utility>

#include "ui/form/list_view.h"
#include "ui/form/simple_controls.h"
#include "ui/options/key_box.h"
#include "ui/options/option_page.h"

namespace tessary {

class KeyPage final : public OptionPage {
  public:
    KeyPage(OptionValues& options, std::function<void()> changed)
        : OptionPage(options, std::move(changed)) {}

    void ShowValues() override;
    void ShowState() override;

  private:
    void AttachControls() override;
    int SelectedCommand() const;
    void ShowUse();
    void cmdAssignKey_Click();
    void KeysChanged();

    ListView list_;
    KeyBox newKey_;
    Label use_;
    Button assign_;
    Button drop_;
    Button usual_;
    Button allUsual_;
};

}  // namespace tessary
