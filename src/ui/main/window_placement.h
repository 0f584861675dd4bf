// Where the main window stands, kept between runs in the settings' section `Window`.
#pragma once

#include <windows.h>

#include <optional>

namespace tessary {

// Stores place and size of the window when it is neither maximised nor minimised (`Main_X`,
// `Main_Y`, `Main_Width`, `Main_Height`; pixels of the work area) and whether it is maximised, or
// would be again after minimising (`Main_Maximized`). A store that cannot be written is no error.
void SaveMainPlacement(const WINDOWPLACEMENT& placement);

// The stored placement with SW_SHOWMAXIMIZED or SW_SHOWNORMAL, not larger than its screen; in the
// middle of the main screen when the caption could be reached on none. Nothing when none is stored.
std::optional<WINDOWPLACEMENT> ReadMainPlacement();

}  // namespace tessary
