// Keeping a control from painting while much of it changes.
#pragma once

#include "ui/form/control.h"

namespace tessary {

// Holds back a control's painting for its own life. The control is not to be shown or hidden
// meanwhile.
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
