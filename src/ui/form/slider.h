// A horizontal slider.
#pragma once

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <functional>
#include <utility>

#include "ui/form/control.h"

namespace tessary {

class Slider final : public Control {
  public:
    // The positions are `least` to `most`, from left to right, with a tick at every `tickStep`th.
    // The arrow keys move by one, the page keys by `pageStep`.
    void SetRange(int least, int most, int tickStep = 1, int pageStep = 2) {
        Send(TBM_SETRANGEMIN, FALSE, least);
        Send(TBM_SETRANGEMAX, TRUE, most);
        Send(TBM_SETTICFREQ, static_cast<WPARAM>(tickStep));
        Send(TBM_SETLINESIZE, 0, 1);
        Send(TBM_SETPAGESIZE, 0, pageStep);
    }

    // Beyond the range: the nearest end.
    void SetPosition(int position) { Send(TBM_SETPOS, TRUE, position); }
    int Position() const { return static_cast<int>(Send(TBM_GETPOS)); }

    // The user has moved it.
    void OnChange(std::function<void()> handler) { change_ = std::move(handler); }

  private:
    void OnScroll() override {
        if (change_) change_();
    }

    std::function<void()> change_;
};

}  // namespace tessary
