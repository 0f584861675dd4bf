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
    // Without ticks. False when the system refuses the control.
    bool Create(HWND parent) {
        return CreateChild(parent, TRACKBAR_CLASSW,
                           TBS_HORZ | TBS_NOTICKS | TBS_FIXEDLENGTH | WS_TABSTOP);
    }
    // Of one that was created here, in pixels.
    void SetThumb(int length) { Send(TBM_SETTHUMBLENGTH, static_cast<WPARAM>(length)); }

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

    // The user has moved it, or let go of it.
    void OnChange(std::function<void()> handler) { change_ = std::move(handler); }
    // In the handler: whether he has let go.
    bool HasCome() const { return hasCome_; }
    // Whether the mouse holds it.
    bool IsDragged() const { return Handle() != nullptr && GetCapture() == Handle(); }

  private:
    void OnScroll(int code) override {
        hasCome_ = code == TB_ENDTRACK || code == TB_THUMBPOSITION;
        if (change_) change_();
    }

    std::function<void()> change_;
    bool hasCome_ = false;
};

}  // namespace tessary
