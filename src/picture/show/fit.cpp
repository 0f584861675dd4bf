#include "picture/show/fit.h"

#include <algorithm>

#include "app/settings/modValue.h"

namespace tessary {
namespace {

// part × whole / total, rounded to the nearest and at least 1; the products need 64 bits.
LONG Scaled(int64_t part, int64_t whole, int64_t total) {
    return static_cast<LONG>(std::max<int64_t>(1, (part * whole + total / 2) / total));
}

}  // namespace

SIZE SizeModeBox(int16_t sizeMode, SIZE workArea) {
    switch (sizeMode) {
        case kSizeMode640:
            return {640, 480};
        case kSizeMode800:
            return {800, 600};
        case kSizeMode1024:
            return {1024, 768};
        case kSizeModeScreen:
            return workArea;
        default:
            return {0, 0};
    }
}

SIZE FitIntoBox(SIZE picture, SIZE box) {
    if (box.cx <= 0 || box.cy <= 0 || picture.cx <= 0 || picture.cy <= 0) return picture;
    const bool widthFills =
        static_cast<int64_t>(picture.cx) * box.cy >= static_cast<int64_t>(picture.cy) * box.cx;
    if (widthFills) return {box.cx, std::min(box.cy, Scaled(picture.cy, box.cx, picture.cx))};
    return {std::min(box.cx, Scaled(picture.cx, box.cy, picture.cy)), box.cy};
}

}  // namespace tessary
