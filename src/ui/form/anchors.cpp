#include "ui/form/anchors.h"

#include <algorithm>

namespace tessary {
namespace {

SIZE ClientSizeOf(HWND window) {
    RECT area{};
    GetClientRect(window, &area);
    return {area.right, area.bottom};
}

// Moves the two ends of a control's extent by what its dialog has grown.
void Stretch(LONG& start, LONG& end, int growth, bool boundStart, bool boundEnd) {
    if (!boundEnd) return;
    end += growth;
    if (!boundStart) start += growth;
}

}  // namespace

void Anchors::Take(HWND dialog) {
    places_.clear();
    for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        RECT area{};
        GetWindowRect(control, &area);
        MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
        places_.push_back({control, area});
    }
    base_ = ClientSizeOf(dialog);
}

void Anchors::Scale(int newDpi, int oldDpi) {
    const auto scale = [&](LONG& length) { length = MulDiv(length, newDpi, oldDpi); };
    for (Place& place : places_) {
        for (LONG* const edge :
             {&place.area.left, &place.area.top, &place.area.right, &place.area.bottom}) {
            scale(*edge);
        }
    }
    scale(base_.cx);
    scale(base_.cy);
}

void Anchors::Apply(HWND dialog) const {
    const SIZE size = ClientSizeOf(dialog);
    const int wider = std::max(0L, size.cx - base_.cx);
    const int higher = std::max(0L, size.cy - base_.cy);
    HDWP moves = BeginDeferWindowPos(static_cast<int>(places_.size()));
    for (const Place& place : places_) {
        const auto bound = edges_.find(GetDlgCtrlID(place.control));
        const unsigned edges =
            bound != edges_.end() ? bound->second : unsigned{kAnchorLeft | kAnchorTop};
        RECT area = place.area;
        Stretch(area.left, area.right, wider, (edges & kAnchorLeft) != 0,
                (edges & kAnchorRight) != 0);
        Stretch(area.top, area.bottom, higher, (edges & kAnchorTop) != 0,
                (edges & kAnchorBottom) != 0);
        if (moves == nullptr) return;  // no memory: the system has dropped all moves
        // Controls are moved over each other's places: what stood there must not be copied along.
        moves = DeferWindowPos(moves, place.control, nullptr, area.left, area.top,
                               area.right - area.left, area.bottom - area.top,
                               SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
    EndDeferWindowPos(moves);
}

}  // namespace tessary
