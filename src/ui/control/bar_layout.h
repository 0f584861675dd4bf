// Where the parts of the control bar stand in it, afloat and docked.
#pragma once

#include <windows.h>

#include <functional>

#include "ui/main/client_areas.h"

namespace tessary {

// What a layout follows from; sizes in pixels.
struct BarState {
    DockSide side = DockSide::kFloating;
    SIZE size{};  // of the client area
    int dpi = 96;
    bool folded = false;
    bool panelOpen = false;
    int panelAbove = 0;       // how much of the panel stands above a floating bar's toolbar
    bool hasMembers = true;   // whether there are any to list
    int filesPermille = 500;  // of the room that files and members share below each other
    std::function<SIZE(int width)> buttons;  // what they take in rows of that width; 0: in one
};

// In pixels of the client area; empty for what is out of sight.
struct BarParts {
    RECT grip;  // by which it is dragged
    RECT toolbar;
    int rowWidth;  // of the buttons
    RECT info;
    RECT slider;
    RECT files;
    RECT border;  // between files and members
    RECT members;
    RECT panel;  // for deletion
    RECT edge;   // towards the picture
};

BarParts LayOutBar(const BarState& state);

// How thick a docked bar is: `chosen` by the user, and as much as its buttons ask for; folded it
// takes what they do. Within so much room.
int DockedThickness(const BarState& state, int chosen, SIZE room);

// What a bar at a side is thick at first, and at least unfolded, in pixels at 96 dpi.
int UsualThickness(DockSide side);

}  // namespace tessary
