// Where the control bar grows to when its delete panel opens.
#pragma once

#include <windows.h>

namespace tessary {

struct PanelPlace {
    RECT frame;  // of the bar with its panel
    bool above;  // the panel stands above the toolbar, not below the lists
};

// `bar` is the frame of the bar without the panel, `height` that with the panel, and `panel` the
// panel's part of it; all in pixels of the screen. The toolbar stays where it is, where that leaves
// the bar inside the work area and `keepFree` in sight; else the bar moves as little as it must.
PanelPlace PlacePanel(const RECT& bar, int height, int panel, const RECT& work,
                      const RECT& keepFree);

}  // namespace tessary
