// Where the main window stands, kept between runs in the settings' section `Window`.
#pragma once

#include <windows.h>

#include <optional>

namespace tessary {

// What was kept: the frame when the window is neither maximised nor minimised, in pixels of the
// work area.
struct MainPlacement {
    POINT place;
    SIZE size;
    int dpi;  // resolution of the screen that the size is for; 0: unknown
    bool maximized;
};

// Stores where the window stands (`Main_X`, `Main_Y`, `Main_Width`, `Main_Height`), the resolution
// there (`Main_Dpi`), and whether it is maximised, or would be again after minimising
// (`Main_Maximized`). A store that cannot be written is no error.
void SaveMainPlacement(const WINDOWPLACEMENT& placement, int dpi);

// Nothing when none is stored, or something that cannot be.
std::optional<MainPlacement> ReadMainPlacement();

// The frame for the screens as they are now: in the size that it had to the eye, at `dpi`, but not
// larger than its screen; whole on the screen after a change of the resolution; in the middle of
// the main screen when the caption could be reached on none.
RECT PlaceOnScreens(const MainPlacement& kept, int dpi);

}  // namespace tessary
