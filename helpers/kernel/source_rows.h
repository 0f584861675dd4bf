// The rows of a picture as the resize reads them: 3 or 4 bytes a pixel, whatever the picture's own
// depth is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "helpers/dib/unpack_row.h"

namespace tessary::kernel {

// Pictures of 24 and 32 bits without alpha are read where they lie. Rows of all others are unpacked
// into a ring of the rows used last. One object serves one thread.
class SourceRows {
  public:
    // Every row has at least this many readable bytes, so that a whole SSE2 register fits.
    static constexpr size_t kLeastRowBytes = 16;

    // `window`: how many neighbouring rows the caller wants to hold at once. Throws std::bad_alloc.
    SourceRows(const dib::DibView& view, int32_t window,
               dib::Backdrop backdrop = dib::Backdrop::kWhite);

    // Bytes from one pixel to the next: 3 (blue, green, red) or 4 (a byte without meaning behind).
    static size_t PixelBytes(const dib::DibView& view);
    // Bytes of a row that count, at least kLeastRowBytes.
    static size_t RowBytes(const dib::DibView& view);

    // How many neighbouring rows stay readable at once: the window, or less when its rows would
    // have to be unpacked and would fill too much memory.
    int32_t Window() const { return window_; }

    // Row y counted from the top of the picture. It stays readable until a row is asked for that
    // is Window() or more away from it.
    const uint8_t* Row(int32_t y);

  private:
    const dib::DibView& view_;
    dib::RowReader reader_;
    bool direct_;
    int32_t window_;
    size_t rowBytes_;
    std::vector<uint8_t> ring_;  // row y stands in slot y % window_
    std::vector<int32_t> held_;  // which row stands in a slot; -1: none
};

}  // namespace tessary::kernel
