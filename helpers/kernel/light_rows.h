// The rows of a picture as light: what a resize in linear light mixes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "helpers/dib/unpack_row.h"
#include "helpers/kernel/light_levels.h"

namespace tessary::kernel {

// Blue, green, red from 0 to kFullLight; where the picture has alpha that is the fourth sample,
// which the others are multiplied by. The rows used last are kept. One object serves one thread.
class LightRows {
  public:
    // Every row has at least this many readable samples, so that whole registers fit.
    static constexpr size_t kLeastSamples = 16;

    // `window`: how many neighbouring rows the caller wants to hold at once, of the `columns`
    // pixels from `left` on. Throws std::bad_alloc.
    LightRows(const dib::DibView& view, int32_t window, int32_t left, int32_t columns);

    // Samples from one pixel to the next.
    static size_t PixelSamples(const dib::RowReader& reader) { return reader.HasAlpha() ? 4 : 3; }

    // How many neighbouring rows stay readable at once: the window, or less.
    int32_t Window() const { return window_; }

    // Row y counted from the top of the picture. It stays readable until a row is asked for that
    // is Window() or more away from it.
    const int16_t* Row(int32_t y);

  private:
    void Fill(const uint8_t* pixels, int16_t* row) const;

    const dib::DibView& view_;
    dib::RowReader reader_;
    const LightLevels& levels_;
    size_t left_;
    size_t columns_;
    size_t rowSamples_;
    int32_t window_;
    std::vector<uint8_t> unpacked_;  // one row as bytes; empty: read where it lies
    std::vector<int16_t> ring_;      // row y stands in slot y % window_
    std::vector<int32_t> held_;      // which row stands in a slot; -1: none
};

}  // namespace tessary::kernel
