#include "ui/control/panel_place.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace tessary {
namespace {

bool LiesIn(const RECT& inner, const RECT& outer) {
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

// Where there is less room than it needs, its beginning counts.
LONG Within(LONG start, LONG size, LONG low, LONG high) {
    return std::max(std::min(start, high - size), low);
}

RECT MovedInto(const RECT& frame, const RECT& work) {
    RECT moved = frame;
    OffsetRect(&moved,
               Within(frame.left, frame.right - frame.left, work.left, work.right) - frame.left,
               Within(frame.top, frame.bottom - frame.top, work.top, work.bottom) - frame.top);
    return moved;
}

LONG Distance(const RECT& from, const RECT& to) {
    return std::abs(from.left - to.left) + std::abs(from.top - to.top);
}

}  // namespace

PanelPlace PlacePanel(const RECT& bar, int height, int panel, const RECT& work,
                      const RECT& keepFree) {
    const RECT below{bar.left, bar.top, bar.right, bar.top + height};
    const RECT above{bar.left, bar.top - panel, bar.right, bar.top - panel + height};
    const auto isGood = [&](const RECT& frame) {
        RECT hidden{};
        return LiesIn(frame, work) && !IntersectRect(&hidden, &frame, &keepFree);
    };
    if (isGood(below)) return {below, false};
    if (isGood(above)) return {above, true};

    const RECT inside = MovedInto(below, work);
    std::optional<RECT> nearest;
    const auto tryAt = [&](LONG left, LONG top) {
        const RECT frame{left, top, left + bar.right - bar.left, top + height};
        if (!isGood(frame)) return;
        if (!nearest || Distance(inside, frame) < Distance(inside, *nearest)) nearest = frame;
    };
    tryAt(inside.left, inside.top);
    tryAt(inside.left, keepFree.top - height);
    tryAt(inside.left, keepFree.bottom);
    tryAt(keepFree.left - (bar.right - bar.left), inside.top);
    tryAt(keepFree.right, inside.top);
    return {nearest.value_or(inside), false};
}

}  // namespace tessary
