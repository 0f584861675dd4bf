// The page of how pictures are saved.
#pragma once

#include <deque>

#include "app/settings/saver_format.h"
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
    void cmdFileFormatEnv_Click(const SaverFormat& format);
    void ShowFormats();

    // A format's button, and what is set for it.
    struct Row {
        const SaverFormat& format;
        Button button{};
        Label label{};
    };
    std::deque<Row> rows_;  // a deque: controls stay where they are
};

}  // namespace tessary
