// The mouse wheel in whole notches.
#pragma once

#include <windows.h>

namespace tessary {

// Adds up the small turns of high-resolution wheels.
class WheelNotches {
  public:
    // Takes a turn in units of WHEEL_DELTA; the whole notches that it completes, positive away from
    // the user. What was left of turns the other way is forgotten.
    int Add(int delta) {
        if ((delta < 0) != (rest_ < 0)) rest_ = 0;
        rest_ += delta;
        const int notches = rest_ / WHEEL_DELTA;
        rest_ %= WHEEL_DELTA;
        return notches;
    }

  private:
    int rest_ = 0;
};

}  // namespace tessary
