#include "ui/control/bar_layout.h"

#include <algorithm>

#include "ui/control/bar_place.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kFrame = 1;
constexpr int kMargin = 4;
constexpr int kGrip = 8;
constexpr int kInfoHeight = 20;
constexpr int kEdge = 5;  // to take hold of
constexpr int kLeastList = 60;
constexpr int kLeastInfo = 320;  // beside the buttons, with the slider
constexpr int kPanelHeight = BarPlace::kDeletePanelHeight - BarPlace::kUnfoldedHeight;
constexpr int kStackedPanelHeight = 220;

constexpr int kUsualWidth = 260;
constexpr int kUsualHeight = BarPlace::kUnfoldedHeight + kEdge;
constexpr int kLeastWidth = 150;
constexpr int kLeastHeight = 100;

constexpr int kWhole = 1000;

class Layout {
  public:
    explicit Layout(const BarState& state)
        : state_(state),
          margin_(Scale(kMargin)),
          width_(static_cast<int>(state.size.cx)),
          height_(static_cast<int>(state.size.cy)) {}

    BarParts Afloat() const;
    BarParts Across() const;   // at the upper or lower side
    BarParts Upright() const;  // at the left or right
    int FoldedThickness(SIZE room) const;

  private:
    int Scale(int pixels) const { return MulDiv(pixels, state_.dpi, 96); }
    bool IsUnfolded() const { return state_.panelOpen || !state_.folded; }
    static RECT At(int left, int top, int width, int height) {
        return {left, top, left + std::max(width, 0), top + std::max(height, 0)};
    }
    // The rest of the bar, when the edge that faces the picture is taken off.
    RECT TakeEdge(BarParts& parts) const;

    const BarState& state_;
    int margin_;
    int width_;
    int height_;
};

BarParts Layout::Afloat() const {
    BarParts parts{};
    const int folded = Scale(BarPlace::kFoldedHeight);
    const int frame = Scale(kFrame);
    const int inner = width_ - 2 * margin_;
    const int above = state_.panelAbove;
    const int buttons = std::min<int>(state_.buttons(0).cy, folded - 2 * frame);
    const int grip = Scale(kGrip);
    parts.grip = At(0, above, grip, folded);
    parts.toolbar = At(grip, above + (folded - buttons) / 2, width_ - grip - frame, buttons);
    if (!IsUnfolded()) return parts;
    const int info = above + folded + Scale(1);
    const int infoHeight = Scale(kInfoHeight);
    const int fileWidth = (inner - margin_) * 3 / 5;
    const int right = 2 * margin_ + fileWidth;
    const int rightWidth = inner - margin_ - fileWidth;
    parts.info = At(margin_, info, fileWidth, infoHeight);
    parts.slider = At(right, info, rightWidth, infoHeight);
    const int lists = info + infoHeight + margin_ / 2;
    const int listHeight = above + Scale(BarPlace::kUnfoldedHeight) - margin_ - lists;
    parts.files = At(margin_, lists, fileWidth, listHeight);
    parts.members = At(right, lists, rightWidth, listHeight);
    if (state_.panelOpen) {
        const int top = above > 0 ? margin_ : Scale(BarPlace::kUnfoldedHeight);
        parts.panel = At(margin_, top, inner, Scale(kPanelHeight) - margin_);
    }
    return parts;
}

RECT Layout::TakeEdge(BarParts& parts) const {
    RECT rest{0, 0, width_, height_};
    if (!IsUnfolded()) return rest;
    const RECT area = rest;
    const int edge = Scale(kEdge);
    switch (state_.side) {
        case DockSide::kTop:
            rest.bottom = std::max<LONG>(rest.bottom - edge, 0);
            break;
        case DockSide::kBottom:
            rest.top += edge;
            break;
        case DockSide::kLeft:
            rest.right = std::max<LONG>(rest.right - edge, 0);
            break;
        default:
            rest.left += edge;
            break;
    }
    SubtractRect(&parts.edge, &area, &rest);
    return rest;
}

BarParts Layout::Across() const {
    BarParts parts{};
    const RECT area = TakeEdge(parts);
    const int grip = Scale(kGrip);
    const int frame = Scale(kFrame);
    const int least = Scale(kLeastInfo);
    const SIZE row = state_.buttons(0);
    const bool isWide = width_ - grip - row.cx - 2 * margin_ >= least;
    parts.rowWidth = isWide ? 0 : std::max(width_ - grip - margin_, 1);
    const SIZE buttons = state_.buttons(parts.rowWidth);
    const int rowHeight = std::max<int>(buttons.cy + 2 * frame, Scale(BarPlace::kFoldedHeight));
    const int top = static_cast<int>(area.top);
    const int bottom = static_cast<int>(area.bottom);
    parts.grip = At(0, top, grip, rowHeight);
    parts.toolbar = At(grip, top + (rowHeight - buttons.cy) / 2,
                       isWide ? buttons.cx : width_ - grip - margin_, buttons.cy);
    const int infoHeight = Scale(kInfoHeight);
    const int left = isWide ? static_cast<int>(parts.toolbar.right) + 2 * margin_ : margin_;
    const int inner = width_ - margin_ - left;
    const int infoWidth = (inner - margin_) * 3 / 5;
    const int infoTop = isWide ? top + (rowHeight - infoHeight) / 2 : top + rowHeight;
    if (isWide || IsUnfolded()) {
        parts.info = At(left, infoTop, infoWidth, infoHeight);
        parts.slider =
            At(left + infoWidth + margin_, infoTop, inner - margin_ - infoWidth, infoHeight);
    }
    if (!IsUnfolded()) return parts;
    const int lists = isWide ? top + rowHeight : infoTop + infoHeight + margin_ / 2;
    const int panel = state_.panelOpen ? Scale(kPanelHeight) : 0;
    const int listsBottom = bottom - panel - (state_.side == DockSide::kBottom ? margin_ : 0);
    const int both = width_ - 3 * margin_;
    const int fileWidth = both * 3 / 5;
    parts.files = At(margin_, lists, fileWidth, listsBottom - lists);
    parts.members = At(2 * margin_ + fileWidth, lists, both - fileWidth, listsBottom - lists);
    if (state_.panelOpen) {
        parts.panel = At(margin_, listsBottom + margin_, width_ - 2 * margin_, panel - 2 * margin_);
    }
    return parts;
}

BarParts Layout::Upright() const {
    BarParts parts{};
    const RECT area = TakeEdge(parts);
    const int grip = Scale(kGrip);
    const int left = static_cast<int>(area.left);
    const int width = static_cast<int>(area.right - area.left);
    parts.grip = At(left, 0, width, grip);
    if (!IsUnfolded()) {
        parts.rowWidth = 1;
        const SIZE column = state_.buttons(parts.rowWidth);
        parts.toolbar = At(left + (width - column.cx) / 2, grip, column.cx, height_ - grip);
        return parts;
    }
    const bool isLeft = state_.side == DockSide::kLeft;
    const int first =
        left + (isLeft ? margin_ : 0);  // the edge keeps its distance on the other side
    const int inner = width - margin_;
    parts.rowWidth = std::max(inner, 1);
    const SIZE buttons = state_.buttons(parts.rowWidth);
    parts.toolbar = At(first, grip, inner, buttons.cy);
    const int infoHeight = Scale(kInfoHeight);
    int top = grip + static_cast<int>(buttons.cy) + margin_;
    parts.info = At(first, top, inner, infoHeight);
    top += infoHeight + margin_ / 2;
    parts.slider = At(first, top, inner, infoHeight);
    top += infoHeight + margin_ / 2;

    int bottom = height_ - margin_;
    if (state_.panelOpen) {
        const int panel = std::min(Scale(kStackedPanelHeight), (bottom - top) * 3 / 5);
        parts.panel = At(first, bottom - panel, inner, panel);
        bottom -= panel + margin_;
    }
    const int room = bottom - top;
    if (!state_.hasMembers) {
        parts.files = At(first, top, inner, room);
        return parts;
    }
    const int border = Scale(kEdge);
    const int least = std::min(Scale(kLeastList), (room - border) / 2);
    const int files = std::clamp(MulDiv(room, state_.filesPermille, kWhole), least,
                                 std::max(room - border - least, least));
    parts.files = At(first, top, inner, files);
    parts.border = At(first, top + files, inner, border);
    parts.members = At(first, top + files + border, inner, room - files - border);
    return parts;
}

int Layout::FoldedThickness(SIZE room) const {
    if (IsVertical(state_.side)) {
        return static_cast<int>(state_.buttons(1).cx) + 2 * Scale(kFrame);
    }
    const int beside = static_cast<int>(room.cx) - Scale(kGrip);
    const SIZE row = state_.buttons(0);
    const bool isWide = beside - row.cx - 2 * margin_ >= Scale(kLeastInfo);
    const SIZE buttons = isWide ? row : state_.buttons(std::max(beside - margin_, 1));
    return std::max<int>(buttons.cy + 2 * Scale(kFrame), Scale(BarPlace::kFoldedHeight));
}

}  // namespace

BarParts LayOutBar(const BarState& state) {
    const Layout layout(state);
    if (state.side == DockSide::kFloating) return layout.Afloat();
    return IsVertical(state.side) ? layout.Upright() : layout.Across();
}

int DockedThickness(const BarState& state, int chosen, SIZE room) {
    const auto scale = [&](int pixels) { return MulDiv(pixels, state.dpi, 96); };
    const bool unfolded = state.panelOpen || !state.folded;
    if (unfolded && IsVertical(state.side)) return std::max(chosen, scale(kLeastWidth));
    const int folded = Layout(state).FoldedThickness(room);
    if (!unfolded) return folded;
    const int least = folded + scale(kLeastHeight - BarPlace::kFoldedHeight);
    return std::max(chosen, least) + (state.panelOpen ? scale(kPanelHeight) : 0);
}

int UsualThickness(DockSide side) {
    return IsVertical(side) ? kUsualWidth : kUsualHeight;
}

}  // namespace tessary
