#include "ui/main/picture_scroller.h"

#include <utility>

namespace tessary {
namespace {

std::optional<ScrollKey> ScrollKeyOf(int keyCode) {
    switch (keyCode) {
        case VK_LEFT:
            return ScrollKey::kLeft;
        case VK_UP:
            return ScrollKey::kUp;
        case VK_RIGHT:
            return ScrollKey::kRight;
        case VK_DOWN:
            return ScrollKey::kDown;
        default:
            return std::nullopt;
    }
}

}  // namespace

ViewSize PictureScroller::Area() const {
    const SIZE area = box_.AreaSize();
    return {area.cx, area.cy};
}

ViewSize PictureScroller::Picture() const {
    const SIZE picture = box_.PictureSize();
    return {picture.cx, picture.cy};
}

ViewPosition PictureScroller::Position() const {
    const POINT position = box_.PicturePosition();
    return {position.x, position.y};
}

void PictureScroller::MoveTo(ViewPosition position) {
    box_.MovePicture({position.x, position.y});
}

void PictureScroller::SetPicture(IPicture* picture, SIZE size) {
    EndDrag();
    const ViewPosition position = PlacePicture(Area(), {size.cx, size.cy}, {});
    box_.SetPicture(picture, size, {position.x, position.y});
}

void PictureScroller::AreaChanged() {
    MoveTo(PlacePicture(Area(), Picture(), Position()));
}

bool PictureScroller::CanScroll() const {
    return tessary::CanScroll(Area(), Picture());
}

bool PictureScroller::KeyDown(int keyCode) {
    const std::optional<ScrollKey> key = ScrollKeyOf(keyCode);
    if (!key) return false;
    MoveTo(StepPicture(Area(), Picture(), Position(), *key));
    box_.Refresh();
    return true;
}

void PictureScroller::BeginDrag(POINT at) {
    drag_ = Drag{at, Position()};
    SetCapture(box_.Handle());
}

void PictureScroller::DragTo(POINT at) {
    if (!drag_) return;
    const ViewPosition wanted{drag_->position.x + at.x - drag_->start.x,
                              drag_->position.y + at.y - drag_->start.y};
    MoveTo(PlacePicture(Area(), Picture(), wanted));
    box_.Refresh();
}

void PictureScroller::EndDrag() {
    if (!drag_) return;
    drag_.reset();  // first: releasing tells the box that the capture is lost
    // Whoever has taken the capture meanwhile keeps it.
    if (GetCapture() == box_.Handle()) ReleaseCapture();
}

}  // namespace tessary
