// The page of how pictures are saved.
#pragma once

#include "ui/options/option_page.h"

namespace tessary {

class FormatPage final : public OptionPage {
  public:
    FormatPage(OptionValues& options, std::function<void()> changed)
        : OptionPage(options, std::move(changed)) {}

    void ShowValues() override;
    void ShowState() override;

  private:
    void AttachControls() override;
    void cmdFileFormatEnv_Click(int format);
    void ShowFormats();

    Button cmdFileFormatEnv_[3];  // BMP, JPEG, PNG
    Label labelFileFormat_[3];
};

}  // namespace tessary
