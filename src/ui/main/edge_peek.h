// Brings a part of a window in sight as long as the pointer is there.
#pragma once

#include <windows.h>

#include <functional>
#include <utility>

#include "ui/form/timer.h"

namespace tessary {

class EdgePeek {
  public:
    struct Actions {
        std::function<bool(POINT onScreen)> calls;  // the pointer is where the part is to come
        std::function<bool(POINT onScreen)> holds;  // it is over the part, which is in sight
        std::function<void(bool isShown)> show;
    };
    explicit EdgePeek(Actions actions) : actions_(std::move(actions)) {}

    // The pointer has moved, without a button down.
    void PointerMoved();

    // The part goes, if it was brought.
    void End();

  private:
    void Look();

    Actions actions_;
    int away_ = 0;  // ticks since the pointer has left
    Timer watch_{[this] { Look(); }};
};

}  // namespace tessary
