#include "ui/main/client_areas.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace tessary {
namespace {

// What a part gets of a room that is not to be used up: half of it, whatever comes.
int Granted(int wanted, int room, int leastView) {
    return std::clamp(wanted, 0, std::max({room - leastView, room / 2, 0}));
}

void TakeOff(RECT& area, DockSide side, int extent) {
    switch (side) {
        case DockSide::kFloating:
            return;
        case DockSide::kTop:
            area.top += extent;
            return;
        case DockSide::kLeft:
            area.left += extent;
            return;
        case DockSide::kRight:
            area.right -= extent;
            return;
        case DockSide::kBottom:
            area.bottom -= extent;
            return;
    }
}

}  // namespace

RECT StripAt(const RECT& area, DockSide side, int extent) {
    RECT rest = area;
    TakeOff(
        rest, side,
        std::min<int>(extent, IsVertical(side) ? area.right - area.left : area.bottom - area.top));
    RECT strip{};
    SubtractRect(&strip, &area, &rest);
    return strip;
}

ClientAreas DivideClient(const ClientParts& parts) {
    ClientAreas areas{};
    const LONG bottom = std::max<LONG>(parts.client.cy - parts.status, 0);
    RECT room{0, 0, std::max<LONG>(parts.client.cx, 0), bottom};
    areas.silence = StripAt(room, DockSide::kBottom, parts.silence);
    room.bottom -= areas.silence.bottom - areas.silence.top;
    if (parts.side != DockSide::kFloating && parts.bar) {
        const SIZE size{room.right - room.left, room.bottom - room.top};
        const int extent =
            Granted(parts.bar(size), IsVertical(parts.side) ? size.cx : size.cy, parts.leastView);
        areas.bar = StripAt(room, parts.side, extent);
        if (!parts.barCovers) TakeOff(room, parts.side, extent);
    }
    const int info = Granted(parts.info, room.right - room.left, parts.leastView);
    areas.info = StripAt(room, DockSide::kRight, info);
    room.right -= info;
    areas.view = room;
    return areas;
}

DockSide SideAt(const RECT& client, POINT at, int reach) {
    RECT around = client;
    InflateRect(&around, reach, reach);
    if (!PtInRect(&around, at)) return DockSide::kFloating;
    DockSide nearest = DockSide::kFloating;
    LONG least = reach;
    for (const auto& [side, distance] : {std::pair{DockSide::kLeft, at.x - client.left},
                                         {DockSide::kRight, client.right - 1 - at.x},
                                         {DockSide::kTop, at.y - client.top},
                                         {DockSide::kBottom, client.bottom - 1 - at.y}}) {
        if (std::abs(distance) > least) continue;
        if (nearest != DockSide::kFloating && std::abs(distance) == least) continue;
        nearest = side;
        least = std::abs(distance);
    }
    return nearest;
}

}  // namespace tessary
