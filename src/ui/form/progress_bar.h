// A bar that tells how far something is.
#pragma once

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "ui/form/control.h"

namespace tessary {

class ProgressBar final : public Control {
  public:
    // Shows `position` of `maximum`. Of nothing, or beyond an end: the nearest end.
    void SetProgress(int32_t position, int32_t maximum) {
        constexpr int32_t kMost = std::numeric_limits<int32_t>::max() - 1;
        const int32_t end = std::clamp(maximum, 1, kMost);
        const int32_t at = std::clamp(position, 0, end);
        // Newer systems creep up to a higher position, but go back to a lower one at once: stepping
        // back from the next one shows the true position now.
        Send(PBM_SETRANGE32, 0, end + 1);
        Send(PBM_SETPOS, static_cast<WPARAM>(at + 1));
        Send(PBM_SETPOS, static_cast<WPARAM>(at));
        Send(PBM_SETRANGE32, 0, end);
    }
};

}  // namespace tessary
