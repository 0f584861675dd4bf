#include "ui/form/grid_layout.h"

#include <algorithm>

namespace tessary {

GridLayout::GridLayout(int count, SIZE least, SIZE view)
    : count_(count),
      columns_(static_cast<int>(std::max<LONG>(view.cx / std::max<LONG>(least.cx, 1), 1))),
      rowHeight_(static_cast<int>(std::max<LONG>(least.cy, 1))),
      view_(view) {}

int64_t GridLayout::Height() const {
    return (int64_t{count_} + columns_ - 1) / columns_ * rowHeight_;
}

int64_t GridLayout::MostScrolled() const {
    return std::max<int64_t>(Height() - view_.cy, 0);
}

RECT GridLayout::Cell(int index, int64_t scrolled) const {
    const int column = index % columns_;
    const auto top = static_cast<LONG>(RowOf(index) * rowHeight_ - scrolled);
    return {MulDiv(view_.cx, column, columns_), top, MulDiv(view_.cx, column + 1, columns_),
            top + rowHeight_};
}

int GridLayout::At(POINT place, int64_t scrolled) const {
    if (place.x < 0 || place.x >= view_.cx || place.y + scrolled < 0) return -1;
    int64_t index = (place.y + scrolled) / rowHeight_ * columns_;
    for (int column = 1; column < columns_ && place.x >= MulDiv(view_.cx, column, columns_);
         ++column)
        ++index;
    return index < count_ ? static_cast<int>(index) : -1;
}

int GridLayout::FirstIn(int top, int64_t scrolled) const {
    const int64_t row = std::max<int64_t>(top + scrolled, 0) / rowHeight_;
    return static_cast<int>(std::min<int64_t>(row * columns_, count_));
}

int GridLayout::EndOf(int bottom, int64_t scrolled) const {
    const int64_t rows = (std::max<int64_t>(bottom + scrolled, 0) + rowHeight_ - 1) / rowHeight_;
    return static_cast<int>(std::min<int64_t>(rows * columns_, count_));
}

int64_t GridLayout::ScrolledTo(int index, int64_t scrolled) const {
    if (index < 0 || index >= count_) return scrolled;
    const int64_t top = RowOf(index) * rowHeight_;
    // Of one that is higher than the view the upper edge counts.
    return std::min(std::max(scrolled, top + rowHeight_ - view_.cy), top);
}

int GridLayout::Moved(int from, int key) const {
    if (count_ == 0) return from;
    const int last = count_ - 1;
    const int at = std::clamp(from, 0, last);
    const int page = std::max<int>(view_.cy / rowHeight_, 1) * columns_;
    switch (key) {
        case VK_LEFT:
            return std::max(at - 1, 0);
        case VK_RIGHT:
            return std::min(at + 1, last);
        case VK_UP:
            return at < columns_ ? at : at - columns_;
        case VK_DOWN:  // below the last column of a row that is not full comes its end
            return RowOf(at) == RowOf(last) ? at : std::min(at + columns_, last);
        case VK_HOME:
            return 0;
        case VK_END:
            return last;
        case VK_PRIOR:
            return at - std::min(at / columns_ * columns_, page);
        case VK_NEXT: {
            const auto below =
                static_cast<int>(std::min<int64_t>((RowOf(last) - RowOf(at)) * columns_, page));
            return std::min(at + below, last);
        }
        default:
            return from;
    }
}

}  // namespace tessary
