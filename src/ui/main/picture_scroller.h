// Scrolls the picture of a picture box by keys and by dragging.
#pragma once

#include <ocidl.h>
#include <windows.h>

#include <optional>

#include "ui/form/picture_box.h"
#include "ui/main/view_layout.h"

namespace tessary {

class PictureScroller {
  public:
    // The box must outlive the scroller.
    explicit PictureScroller(PictureBox& box) : box_(box) {}

    // Shows another picture from its top left corner on; null for none.
    void SetPicture(IPicture* picture, SIZE size);

    // The box has a new size: keeps the picture where it is as far as the edges allow.
    void AreaChanged();

    // Whether a part of the picture is out of sight.
    bool CanScroll() const;

    // Scrolls for an arrow key (VK_…); false for every other key.
    bool KeyDown(int keyCode);

    // Dragging: the picture follows the pointer, which the box captures meanwhile. Positions are
    // pixels of the box.
    void BeginDrag(POINT at);
    void DragTo(POINT at);
    void EndDrag();

  private:
    struct Drag {
        POINT start;            // of the pointer
        ViewPosition position;  // of the picture at that time
    };

    ViewSize Area() const;
    ViewSize Picture() const;
    ViewPosition Position() const;
    void MoveTo(ViewPosition position);

    PictureBox& box_;
    std::optional<Drag> drag_;
};

}  // namespace tessary
