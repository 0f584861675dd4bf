// The page of what is listed, and where steps lead.
#pragma once

#include "ui/options/option_page.h"

namespace tessary {

class ListPage final : public OptionPage {
  public:
    ListPage(OptionValues& options, std::function<void()> changed)
        : OptionPage(options, std::move(changed)) {}

    void ShowState() override;

  private:
    void AttachControls() override;
};

}  // namespace tessary
