// The slider that leads to any entry of what is viewed.
#pragma once

#include <functional>

#include "ui/control/shown_place.h"
#include "ui/form/slider.h"
#include "ui/form/timer.h"

namespace tessary {

// While it is being moved the user is told where it stands; what is there is shown when he lets go
// of it, or rests.
class PlaceSlider {
  public:
    struct Events {
        std::function<void(const EntryPlace&)> passes;   // moved there, and maybe on
        std::function<void(const EntryPlace&)> chooses;  // stays there; may take long
        std::function<void()> released;
    };
    explicit PlaceSlider(Events events) : events_(std::move(events)) {}

    void Create(HWND parent, const wchar_t* name);

    // Puts it where the selected entry is, but not out of the user's hands.
    void Show(const EntryPlace& place);

    // Its thumb has that length, in pixels.
    void SetThumb(int length) { slider_.SetThumb(length); }
    Slider& Window() { return slider_; }
    const Slider& Window() const { return slider_; }

  private:
    bool IsHeld() const { return slider_.IsDragged() || rests_.IsRunning(); }
    void Moved();
    void Choose();

    Events events_;
    Slider slider_;
    EntryPlace place_;
    Timer rests_{[this] { Choose(); }};
};

}  // namespace tessary
