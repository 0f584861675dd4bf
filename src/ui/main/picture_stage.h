// The picture in its box: what is seen of it, how the user moves and enlarges it, and its pixels.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "picture/color/monitor_colors.h"
#include "picture/picture.h"
#include "picture/view/sharp_sight.h"
#include "picture/view/sight.h"
#include "ui/form/picture_box.h"
#include "ui/form/view_surface.h"

namespace tessary {

// Draws at once with the nearest pixels; a thread makes them sharp meanwhile, and what it has made
// takes their place when it is there.
class PictureStage {
  public:
    // The box must outlive the stage, and nudges ShowSharp.
    explicit PictureStage(PictureBox& box, MonitorColors colors = MonitorColors())
        : box_(box), colors_(std::move(colors)) {}

    // Shows another picture from its top left corner on; an empty one for none. `prepared` is what
    // is to be seen of it, if that was made before: taken where it has the size that is shown.
    void SetPicture(Picture picture, const Picture& prepared);
    bool HasPicture() const { return pixels_ != nullptr; }
    // Puts another picture of the same size into its place, at once. `sharp`: its part that is
    // seen, where that was made. Else it becomes sharp when that is wanted.
    void ShowFrame(SharpSight::Pixels pixels, std::shared_ptr<const SharpPart> sharp);
    // Has what is seen made sharp, where it is not.
    void Sharpen();
    // What the kernel would have to make of the picture; empty: nothing.
    SightPart SharpWish() const;
    // Told when another part is seen, or in another size.
    void OnSeen(std::function<void()> handler) { seen_ = std::move(handler); }

    // How pictures are sized; takes a zoom back.
    void SetRule(const FitRule& rule);
    // The same, unless it is the rule already.
    void FollowRule(const FitRule& rule);
    // The box or the screen have another size. `bars`: whether there are to be scroll bars.
    void RoomChanged(SIZE workArea, bool bars);
    const SightRoom& Room() const { return room_; }

    void ZoomBySteps(int steps, std::optional<POINT> anchor);
    void ZoomBy(double factor, POINT anchor);
    void ToggleFit(std::optional<POINT> anchor);
    // Between two pictures: whether a zoom stays.
    void KeepZoom(bool keeps) { keepsZoom_ = keeps; }

    const Sight& Seen() const { return sight_; }

    void MoveTo(ViewPosition position);
    // Scrolls for an arrow key (VK_…); false for every other key.
    bool KeyDown(int keyCode);
    // Scrolls up or down by most of the view's height; false when there is nothing more to see.
    bool ScrollPage(bool up);
    void ScrollToBottom();
    void ScrollToRight();
    // For a scroll bar's message (PictureBox::Events::scroll).
    void Scroll(int bar, int code, int place);

    // Whether the picture is seen at a place of the box.
    bool Covers(POINT at) const;

    // Dragging: the picture follows the pointer, which the box captures meanwhile. Positions are
    // pixels of the box.
    void BeginDrag(POINT at);
    void DragTo(POINT at);
    void EndDrag();

    // What is mixed where the picture is made sharp. What is seen stays until it is made anew.
    void SetLight(kernel::Light light);

    // What is seen through the picture: a kBackdrop….
    void SetBackdrop(int16_t backdrop);

    // The box may be on another monitor now.
    void MonitorMayHaveChanged();
    // So may the monitors' profiles.
    void ForgetColors();

    // Paints what lies in `area` of the box; the result is the picture's rectangle.
    RECT Paint(HDC screen, const RECT& area);
    // Takes what was made sharp meanwhile.
    void ShowSharp();
    // Whether what is seen is as sharp as it can be made.
    bool IsSharp() const;

  private:
    struct Drag {
        POINT start;            // of the pointer
        ViewPosition position;  // of the picture at that time
    };

    // Does what changes the sight, and shows it.
    template <typename Change>
    void Show(Change change);
    void ShowBars();
    RECT Rectangle() const;      // of the picture in the box
    SightPart SeenPart() const;  // empty: nothing is seen
    bool IsUsable(const SharpPart* sharp) const;
    void Draw();
    void DrawNearest(const SightPart& seen, const RECT& part);
    // From the picture's colours to the monitor's; null: as they are.
    std::shared_ptr<const color::Transform> WayToMonitor();
    void ConvertColors(const SightPart& seen);
    void LayOverBackdrop(const SightPart& seen);

    PictureBox& box_;
    Sight sight_;
    SightRoom room_;
    bool keepsZoom_ = false;
    std::optional<Drag> drag_;
    SharpSight::Pixels pixels_;
    std::shared_ptr<const SharpPart> sharp_;
    MonitorColors colors_;
    std::function<void()> seen_;
    ViewSurface surface_;
    std::shared_ptr<const color::Transform> drawnColors_;
    int16_t backdrop_ = 0;
    kernel::Light light_ = kernel::Light::kStored;
    bool isDrawn_ = false;
    SharpSight sharpener_{[this] { box_.Nudge(); }};
};

}  // namespace tessary
