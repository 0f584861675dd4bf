// Which edges of their dialog its controls keep their distance to.
#pragma once

#include <windows.h>

#include <map>
#include <vector>

namespace tessary {

// A control bound to two opposite edges grows with the dialog; one that nothing is said about stays
// at the upper left.
enum AnchorEdges : unsigned {
    kAnchorLeft = 1,
    kAnchorTop = 2,
    kAnchorRight = 4,
    kAnchorBottom = 8,
    kAnchorWidth = kAnchorLeft | kAnchorRight,
    kAnchorHeight = kAnchorTop | kAnchorBottom,
};

class Anchors {
  public:
    // Binds the control of that number.
    void Bind(int id, unsigned edges) { edges_[id] = edges; }

    // Remembers where the dialog's controls are now, as the layout that the others follow from.
    void Take(HWND dialog);

    // The layout at another resolution.
    void Scale(int newDpi, int oldDpi);

    // Size of the dialog's client area in that layout, in pixels: none is smaller.
    SIZE BaseSize() const { return base_; }

    // Puts the controls where they belong in the dialog's present size.
    void Apply(HWND dialog) const;

  private:
    struct Place {
        HWND control;
        RECT area;  // in the layout; pixels
    };

    std::map<int, unsigned> edges_;
    std::vector<Place> places_;
    SIZE base_{};
};

}  // namespace tessary
