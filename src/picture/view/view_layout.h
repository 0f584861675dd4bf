// Where a picture stands inside the area that shows it, in pixels.
#pragma once

namespace tessary {

struct ViewSize {
    int width = 0;
    int height = 0;
};

// The picture's top left corner, from the area's; negative where the picture is scrolled.
struct ViewPosition {
    int x = 0;
    int y = 0;

    bool operator==(const ViewPosition&) const = default;
};

enum class ScrollKey { kLeft, kUp, kRight, kDown };

// Along each axis: a picture that fits stands in the middle, a larger one where it is wanted but
// never so that an edge of it leaves the area.
ViewPosition PlacePicture(ViewSize area, ViewSize picture, ViewPosition wanted);

// Whether the picture is larger than the area along an axis.
bool CanScroll(ViewSize area, ViewSize picture);

// The position after an arrow key, which moves the sight of the picture by a sixteenth of the area,
// at least a pixel: right and down bring into sight what lies there.
ViewPosition StepPicture(ViewSize area, ViewSize picture, ViewPosition position, ScrollKey key);

}  // namespace tessary
