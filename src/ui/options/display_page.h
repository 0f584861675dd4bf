// The page of the display and the slide show.
#pragma once

#include "ui/form/slider.h"
#include "ui/options/option_page.h"

namespace tessary {

class DisplayPage final : public OptionPage {
  public:
    DisplayPage(OptionValues& options, std::function<void()> changed)
        : OptionPage(options, std::move(changed)) {}

    void ShowValues() override;
    void ShowState() override;

  private:
    void AttachControls() override;
    void ShowInterval();

    Slider sliderSlideShowTime_;
    Label labelSlideShowTime_;
};

// An interval in milliseconds as it is shown: "0.5 秒".
std::wstring IntervalText(int milliseconds);

}  // namespace tessary
