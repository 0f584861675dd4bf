// How the parts of the main window share its client area.
#pragma once

#include <windows.h>

#include <functional>

namespace tessary {

// Where the control bar stands: as a window of its own, or at a side of the main window. The
// numbers are those of its setting.
enum class DockSide { kFloating, kTop, kLeft, kRight, kBottom };

inline bool IsVertical(DockSide side) {
    return side == DockSide::kLeft || side == DockSide::kRight;
}

// What the parts want, in pixels; 0: the part is not there.
struct ClientParts {
    SIZE client;      // of the window
    int status = 0;   // height at the lower edge
    int silence = 0;  // height above that
    DockSide side = DockSide::kFloating;
    std::function<int(SIZE room)> bar = {};  // the docked bar's thickness within so much room
    bool barCovers = false;                  // it lies over the picture and takes nothing from it
    int info = 0;                            // width at the right of the picture
    int leastView = 0;                       // width and height that the picture keeps, if the bar
                                             // and the information can give way
};

// Empty for a part that is not there.
struct ClientAreas {
    RECT silence;
    RECT bar;
    RECT info;
    RECT view;
};

// Status bar and question take the whole width, the docked bar its side of the rest, the
// information the right of what remains; the picture has what is left.
ClientAreas DivideClient(const ClientParts& parts);

// The side at whose edge of `client` a point lies, or is at most so far from it; kFloating where it
// is near none.
DockSide SideAt(const RECT& client, POINT at, int reach);

// A strip of `area` at that side, as thick as `extent` at most.
RECT StripAt(const RECT& area, DockSide side, int extent);

}  // namespace tessary
