// The page of the batch converter's options.
#pragma once

#include "ui/options/option_page.h"

namespace tessary {

class ConvertPage final : public OptionPage {
  public:
    ConvertPage(OptionValues& options, std::function<void()> changed)
        : OptionPage(options, std::move(changed)) {}

    void ShowState() override;
    std::wstring Fault() override;
    void GoToFault() override;

  private:
    void AttachControls() override;
    void cmdErrorLogFileName_Click();

    Button cmdErrorLogFileName_;
    Label labelErrorLogPath_;
};

}  // namespace tessary
