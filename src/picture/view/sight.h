// What is seen of a picture: how large it is shown, and where it stands in the area that shows it.
#pragma once

#include <windows.h>

#include <optional>

#include "picture/view/fit.h"
#include "picture/view/view_layout.h"

namespace tessary {

// The least and the largest scale that the user can zoom to. What fits into the view by less than
// the least one, or by more than the largest one, may be seen so too.
constexpr double kLeastScale = 0.05;
constexpr double kMostScale = 16;

// Where a sight stands: its room, and scroll bars that take some of it. Pixels.
struct SightRoom {
    SIZE whole{};     // with the scroll bars
    SIZE bars{};      // width of the upright scroll bar, height of the flat one; 0: none
    SIZE workArea{};  // the screen without taskbars

    bool operator==(const SightRoom& other) const;
};

// Knows sizes only. Whatever changes, the picture stays within its area: in the middle where it is
// smaller, without a gap at the edges where it is larger.
class Sight {
  public:
    // Another picture of that size, from its top left corner on; 0 × 0 for none. A zoom is kept
    // when `keepsZoom`.
    void SetPicture(SIZE picture, bool keepsZoom);
    void SetRoom(const SightRoom& room);
    // Takes a zoom back. The middle of what is seen stays there.
    void SetRule(const FitRule& rule);
    const FitRule& Rule() const { return rule_; }

    // Zooms so that what is seen at `anchor`, a place of the area, stays there.
    void ZoomTo(double scale, POINT anchor);
    // By so many steps of a quarter; steps stop at 100 % and where the picture fits the view.
    void ZoomBySteps(int steps, POINT anchor);
    // From 100 % to the whole picture in the view, from anything else to 100 %.
    void ToggleFit(POINT anchor);
    bool IsZoomed() const { return zoom_ || fitsView_; }

    void MoveTo(ViewPosition position);
    void Step(ScrollKey key) { MoveTo(StepPicture(ViewArea(), ViewShown(), position_, key)); }

    SIZE Picture() const { return picture_; }
    SIZE Area() const { return area_; }  // what the scroll bars leave
    SIZE Shown() const { return shown_; }
    ViewPosition Position() const { return position_; }
    // Of the shown picture to the picture; 1 without one.
    double Scale() const;
    bool CanScroll() const { return tessary::CanScroll(ViewArea(), ViewShown()); }
    bool HasBarBelow() const { return hasBarBelow_; }
    bool HasBarBeside() const { return hasBarBeside_; }

  private:
    ViewSize ViewArea() const { return {area_.cx, area_.cy}; }
    ViewSize ViewShown() const { return {shown_.cx, shown_.cy}; }
    SIZE ShownIn(SIZE area) const;
    double FitScale() const;
    POINT Middle() const { return {area_.cx / 2, area_.cy / 2}; }
    // Does what changes the size, so that what is seen at `anchor` stays there.
    template <typename Change>
    void Anchored(POINT anchor, Change change);
    void LayOut();

    SIZE picture_{};
    SightRoom room_;
    FitRule rule_;
    std::optional<double> zoom_;
    bool fitsView_ = false;  // in place of the rule's mode
    SIZE area_{};
    SIZE shown_{};
    bool hasBarBelow_ = false;
    bool hasBarBeside_ = false;
    ViewPosition position_;
};

// The size that a picture is shown in by a rule before anybody zooms, beside the scroll bars that
// it needs.
SIZE SizeInRoom(SIZE picture, const FitRule& rule, const SightRoom& room);

}  // namespace tessary
