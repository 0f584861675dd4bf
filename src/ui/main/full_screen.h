// A window without its frame on the whole of its screen.
#pragma once

#include <windows.h>

#include <optional>

#include "app/base/handles.h"

namespace tessary {

class FullScreen {
  public:
    bool IsOn() const { return former_.has_value(); }

    // Takes caption, border and menu off the window and spreads it over the screen that most of it
    // is on; it can still be minimised. Nothing when that is done already, or the window is
    // minimised.
    void Enter(HWND window);

    // Gives the window back its frame, place, size and maximised state.
    void Leave(HWND window);

    // Spreads the window over its screen again, which has another size now.
    void Cover(HWND window) const;

    // Whoever moves the window (WM_WINDOWPOSCHANGING), it covers the screen that it comes to.
    // Nothing while there is no full screen.
    void Keep(HWND window, WINDOWPOS& place) const;

    // Where the window stands, and on a full screen, where it will stand again.
    WINDOWPLACEMENT Placement(HWND window) const;
    // The resolution (dpi) that this place is for.
    int Dpi(HWND window) const;

  private:
    struct Former {
        WINDOWPLACEMENT placement;
        RECT frame;  // on the screen; of a maximised window its placement does not tell it
        MONITORINFO screen;
        int dpi;
        LONG_PTR style;
        UniqueMenu menu;
    };

    std::optional<Former> former_;
};

}  // namespace tessary
