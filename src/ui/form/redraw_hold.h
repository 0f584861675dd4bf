// Keeping a control from painting while much of it changes.
#pragma once

#include "ui/form/control.h"

namespace tessary {

// Holds back a control's painting for its own life. A control that is shown or hidden meanwhile is
// to be shown or hidden again behind it.
class RedrawHold {
  public:
    explicit RedrawHold(const Control& control);
    RedrawHold(const RedrawHold&) = delete;
    RedrawHold& operator=(const RedrawHold&) = delete;
    ~RedrawHold();

  private:
    HWND window_;
    bool visible_;
};

}  // namespace tessary
