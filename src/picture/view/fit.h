// How large a picture is shown.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tessary {

// What the user has chosen for the size of pictures.
struct FitRule {
    int16_t sizeMode = 0;        // one of kSizeMode…; any other one is as kSizeModeOriginal
    bool enlargesSmall = false;  // pictures that are smaller than their box too
    bool holdsBoxes = false;     // a fixed box is no larger than the view

    bool operator==(const FitRule&) const = default;
};

// The rule that the settings hold now.
FitRule ChosenFitRule();

// What there is room for, in pixels.
struct FitRoom {
    SIZE view{};      // the area that shows the picture
    SIZE workArea{};  // the screen without taskbars
};

// The box that a display size mode fits pictures into: 640 × 480, 800 × 600, 1024 × 768, the work
// area, the view, or as wide as the view and of any height. Empty (0 × 0) for mode 0 and for modes
// that do not exist: pictures keep their size.
SIZE SizeModeBox(int16_t sizeMode, const FitRoom& room);

// The largest size of the picture's proportions inside the box, at least 1 × 1; the picture's own
// size for an empty box. Small pictures are enlarged.
SIZE FitIntoBox(SIZE picture, SIZE box);

// The size that a picture is shown in by a rule.
SIZE FittedSize(SIZE picture, const FitRule& rule, const FitRoom& room);

// A picture's size times `scale`, at least 1 × 1.
SIZE ScaledSize(SIZE picture, double scale);

}  // namespace tessary
