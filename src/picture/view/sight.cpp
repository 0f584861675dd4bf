#include "picture/view/sight.h"

#include <algorithm>
#include <cmath>

#include "app/settings/modValue.h"

namespace tessary {
namespace {

constexpr double kZoomStep = 1.25;

bool IsSame(SIZE one, SIZE other) {
    return one.cx == other.cx && one.cy == other.cy;
}

// `stop` where the way from one scale to the other leads over it.
double StoppedAt(double stop, double from, double to) {
    const bool isBetween = from < stop ? stop < to : to < stop && stop < from;
    return isBetween ? stop : to;
}

// By its longer side: the other one may be held at a single pixel.
double ScaleOf(SIZE picture, SIZE shown) {
    const bool isWide = picture.cx >= picture.cy;
    const LONG length = isWide ? picture.cx : picture.cy;
    return length > 0 ? static_cast<double>(isWide ? shown.cx : shown.cy) / length : 1;
}

bool IsAbout(double one, double other) {
    return std::abs(one - other) < 0.0005 * other;
}

// The place along one axis that keeps the point of the picture at `anchor` there.
int Kept(LONG anchor, int position, LONG shown, LONG now) {
    const double point =
        (static_cast<double>(anchor - position) + 0.5) / static_cast<double>(shown);
    return static_cast<int>(
        std::lround(static_cast<double>(anchor) + 0.5 - point * static_cast<double>(now)));
}

}  // namespace

bool SightRoom::operator==(const SightRoom& other) const {
    return IsSame(whole, other.whole) && IsSame(bars, other.bars) &&
           IsSame(workArea, other.workArea);
}

void Sight::SetPicture(SIZE picture, bool keepsZoom) {
    picture_ = picture;
    if (!keepsZoom) {
        zoom_.reset();
        fitsView_ = false;
    }
    position_ = {};
    LayOut();
}

void Sight::SetRoom(const SightRoom& room) {
    if (room == room_) return;
    room_ = room;
    LayOut();
}

void Sight::SetRule(const FitRule& rule) {
    Anchored(Middle(), [&] {
        rule_ = rule;
        zoom_.reset();
        fitsView_ = false;
    });
}

void Sight::ZoomTo(double scale, POINT anchor) {
    Anchored(anchor, [&] {
        // What its mode shows larger than that is not made smaller by zooming in.
        zoom_ = std::clamp(scale, std::min(kLeastScale, FitScale()),
                           std::max({kMostScale, FitScale(), Scale()}));
        fitsView_ = false;
    });
}

void Sight::ZoomBySteps(int steps, POINT anchor) {
    const double from = Scale();
    for (; steps != 0; steps += steps > 0 ? -1 : 1) {
        const double now = Scale();
        double next = steps > 0 ? now * kZoomStep : now / kZoomStep;
        // The nearer of the two comes last, so that it wins.
        const double fit = FitScale();
        const bool oneIsNearer = std::abs(1 - now) < std::abs(fit - now);
        for (const double stop : {oneIsNearer ? fit : 1.0, oneIsNearer ? 1.0 : fit}) {
            if (!IsAbout(now, stop)) next = StoppedAt(stop, now, next);
        }
        ZoomTo(next, anchor);
    }
    // Zoomed back to what the rule wants: it follows the window again.
    const SIZE fitted = FittedSize(picture_, rule_, {area_, room_.workArea});
    if (from != Scale() && IsSame(fitted, shown_) && rule_.sizeMode == kSizeModeWindow) {
        zoom_.reset();
        LayOut();
    }
}

void Sight::ToggleFit(POINT anchor) {
    const bool isOwnSize = IsSame(shown_, picture_);
    Anchored(anchor, [&] {
        fitsView_ = isOwnSize;
        zoom_.reset();
        if (!isOwnSize) zoom_ = 1;
    });
}

void Sight::MoveTo(ViewPosition position) {
    position_ = PlacePicture(ViewArea(), ViewShown(), position);
}

double Sight::Scale() const {
    return zoom_ ? *zoom_ : ScaleOf(picture_, shown_);
}

// The whole picture in the area without scroll bars, enlarged too.
double Sight::FitScale() const {
    return ScaleOf(picture_, FitIntoBox(picture_, room_.whole));
}

SIZE Sight::ShownIn(SIZE area) const {
    if (picture_.cx <= 0) return {};
    if (zoom_) return ScaledSize(picture_, *zoom_);
    FitRule rule = rule_;
    if (fitsView_) {
        rule.sizeMode = kSizeModeWindow;
        rule.enlargesSmall = true;
    }
    const SIZE least{std::max<LONG>(area.cx, 1), std::max<LONG>(area.cy, 1)};
    return FittedSize(picture_, rule, {least, room_.workArea});
}

template <typename Change>
void Sight::Anchored(POINT anchor, Change change) {
    const SIZE former = shown_;
    const ViewPosition at = position_;
    change();
    LayOut();
    if (former.cx <= 0 || former.cy <= 0 || IsSame(former, shown_)) return;
    MoveTo(
        {Kept(anchor.x, at.x, former.cx, shown_.cx), Kept(anchor.y, at.y, former.cy, shown_.cy)});
}

// A scroll bar takes room, which may call for the other one. None goes away within one layout: the
// picture would change its size to and fro.
void Sight::LayOut() {
    hasBarBelow_ = hasBarBeside_ = false;
    for (int pass = 0; pass < 3; ++pass) {
        area_ = {std::max<LONG>(room_.whole.cx - (hasBarBeside_ ? room_.bars.cx : 0), 0),
                 std::max<LONG>(room_.whole.cy - (hasBarBelow_ ? room_.bars.cy : 0), 0)};
        shown_ = ShownIn(area_);
        hasBarBelow_ = hasBarBelow_ || (room_.bars.cy > 0 && shown_.cx > area_.cx);
        hasBarBeside_ = hasBarBeside_ || (room_.bars.cx > 0 && shown_.cy > area_.cy);
    }
    MoveTo(position_);
}

SIZE SizeInRoom(SIZE picture, const FitRule& rule, const SightRoom& room) {
    Sight sight;
    sight.SetRule(rule);
    sight.SetRoom(room);
    sight.SetPicture(picture, false);
    return sight.Shown();
}

}  // namespace tessary
