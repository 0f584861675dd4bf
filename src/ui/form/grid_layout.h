// Where the cells of a grid lie that is scrolled up and down, and where the keys lead in it.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tessary {

// Rows of equal cells, as many in each as fit, and one at least; what is left of the width is
// divided among them. All sizes are pixels.
class GridLayout {
  public:
    // `least`: how large a cell has to be.
    GridLayout() = default;
    GridLayout(int count, SIZE least, SIZE view);

    int Count() const { return count_; }
    int Columns() const { return columns_; }
    SIZE View() const { return view_; }
    int RowHeight() const { return rowHeight_; }
    int64_t Height() const;  // of all rows
    int64_t MostScrolled() const;

    // A cell's place in the view when that is scrolled so far.
    RECT Cell(int index, int64_t scrolled) const;
    // The entry at that place of the view; -1: there is none.
    int At(POINT place, int64_t scrolled) const;
    // Those that lie in these pixels of the view, the last one excluded; equal: there are none.
    int FirstIn(int top, int64_t scrolled) const;
    int EndOf(int bottom, int64_t scrolled) const;
    // As little as has to be scrolled for all of that entry to be seen.
    int64_t ScrolledTo(int index, int64_t scrolled) const;

    // Where an arrow key, Home, End or a page key leads; `from` for all others, and where there is
    // nothing in that direction.
    int Moved(int from, int key) const;

  private:
    int64_t RowOf(int index) const { return index / columns_; }

    int count_ = 0;
    int columns_ = 1;
    int rowHeight_ = 1;
    SIZE view_{};
};

}  // namespace tessary
