#include "picture/view/view_layout.h"

#include <algorithm>

namespace tessary {
namespace {

constexpr int kStepsPerArea = 16;

int PlaceAlongAxis(int area, int picture, int wanted) {
    if (picture <= area) return (area - picture) / 2;
    return std::clamp(wanted, area - picture, 0);
}

}  // namespace

ViewPosition PlacePicture(ViewSize area, ViewSize picture, ViewPosition wanted) {
    return {PlaceAlongAxis(area.width, picture.width, wanted.x),
            PlaceAlongAxis(area.height, picture.height, wanted.y)};
}

bool CanScroll(ViewSize area, ViewSize picture) {
    return picture.width > area.width || picture.height > area.height;
}

ViewPosition StepPicture(ViewSize area, ViewSize picture, ViewPosition position, ScrollKey key) {
    const int across = std::max(area.width / kStepsPerArea, 1);
    const int down = std::max(area.height / kStepsPerArea, 1);
    switch (key) {
        case ScrollKey::kLeft:
            position.x += across;
            break;
        case ScrollKey::kUp:
            position.y += down;
            break;
        case ScrollKey::kRight:
            position.x -= across;
            break;
        case ScrollKey::kDown:
            position.y -= down;
            break;
    }
    return PlacePicture(area, picture, position);
}

}  // namespace tessary
