// The frame that shows where the dragged control bar would be docked.
#pragma once

#include "ui/form/window.h"

namespace tessary {

class DockFrame final : public Window {
  public:
    // In front of `owner`, around this rectangle of the screen.
    void ShowAround(const RECT& onScreen, HWND owner);
    void Hide() const;

  private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    RECT place_{};
};

}  // namespace tessary
