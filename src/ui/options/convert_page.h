// The page of the batch converter's options.
#pragma once

#include "ui/options/option_page.h"

namespace tessary {

class ConvertPage final : public OptionPage {
  public:
    ConvertPage(OptionValues& options, std::function<void()> changed)
        : OptionPage(options, std::move(changed)) {}

    void ShowState() override;

  private:
    void AttachControls() override;
};

}  // namespace tessary
