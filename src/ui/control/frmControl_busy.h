// The stretches of time in which the control bar takes nothing from the user.
#pragma once

#include <optional>

#include "ui/control/frmControl.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/redraw_hold.h"

namespace tessary {

// A time in which one list is being filled, or one picture loaded or looked for: the lists and the
// player's buttons are disabled, and the focus comes back in the end.
class frmControl::Busy {
  public:
    Busy(frmControl& bar, const wchar_t* what);
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    ~Busy();

  private:
    frmControl& bar_;
    HWND focused_;
    std::optional<frmMain::Reading> reading_;
    std::optional<BusyPointer> pointer_;  // none while playing: it would flicker
};

// Loads that follow each other so fast that nobody could read what the bar says between them: it is
// disabled once and painted once.
class frmControl::Burst {
  public:
    explicit Burst(frmControl& bar);
    Burst(const Burst&) = delete;
    Burst& operator=(const Burst&) = delete;
    ~Burst();

    // Paints the lists as they are: a load takes long, and they would seem to be empty.
    void ShowLists();

  private:
    frmControl& bar_;
    HWND focused_;
    std::optional<RedrawHold> files_;
    std::optional<RedrawHold> members_;
};

}  // namespace tessary
