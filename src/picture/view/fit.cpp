#include "picture/view/fit.h"

#include <algorithm>
#include <cmath>

#include "app/settings/modValue.h"

namespace tessary {
namespace {

// part × whole / total, rounded to the nearest and at least 1; the products need 64 bits.
LONG Scaled(int64_t part, int64_t whole, int64_t total) {
    return static_cast<LONG>(std::max<int64_t>(1, (part * whole + total / 2) / total));
}

constexpr LONG kAnyHeight = 1 << 30;

bool IsWithin(SIZE picture, SIZE box) {
    return picture.cx <= box.cx && picture.cy <= box.cy;
}

}  // namespace

FitRule ChosenFitRule() {
    const ProcessValues& values = Values();
    return {.sizeMode = values.fixSizeValue,
            .enlargesSmall = values.general.enlargeSmall != 0,
            .holdsBoxes = values.general.holdBoxes != 0};
}

SIZE SizeModeBox(int16_t sizeMode, const FitRoom& room) {
    switch (sizeMode) {
        case kSizeMode640:
            return {640, 480};
        case kSizeMode800:
            return {800, 600};
        case kSizeMode1024:
            return {1024, 768};
        case kSizeModeScreen:
            return room.workArea;
        case kSizeModeWindow:
            return room.view;
        case kSizeModeWidth:
            return {room.view.cx, kAnyHeight};
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

SIZE FittedSize(SIZE picture, const FitRule& rule, const FitRoom& room) {
    SIZE box = SizeModeBox(rule.sizeMode, room);
    const bool isFixed = rule.sizeMode >= kSizeMode640 && rule.sizeMode <= kSizeModeScreen;
    if (isFixed && rule.holdsBoxes) {
        box = {std::min(box.cx, std::max<LONG>(room.view.cx, 1)),
               std::min(box.cy, std::max<LONG>(room.view.cy, 1))};
    }
    if (!rule.enlargesSmall && IsWithin(picture, box)) return picture;
    return FitIntoBox(picture, box);
}

SIZE ScaledSize(SIZE picture, double scale) {
    const auto scaled = [scale](LONG length) {
        return std::max<LONG>(1, std::lround(static_cast<double>(length) * scale));
    };
    return {scaled(picture.cx), scaled(picture.cy)};
}

}  // namespace tessary
