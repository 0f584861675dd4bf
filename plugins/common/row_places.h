// Where the rows of a stored picture belong in the shown one, which may be turned or mirrored. The
// orientation values are those of the TIFF tag 0x0112, which EXIF uses too.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugins/common/picture_target.h"

namespace tessary::codec {

constexpr uint16_t kUprightOrientation = 1;

// Whether the shown picture is as wide as the stored one is high (orientations 5 to 8).
constexpr bool SwapsAxes(uint16_t orientation) {
    return orientation >= 5 && orientation <= 8;
}

// Pixels of 1, 3 or 4 bytes; of any size in an upright picture whose rows are decoded in their
// places. Orientations outside 1 to 8 count as 1.
class RowPlaces {
  public:
    // `rows` are those of the shown picture; `width` and `height` are those of the stored one.
    RowPlaces(const PictureRows& rows, uint32_t width, uint32_t height, unsigned bytesPerPixel,
              uint16_t orientation);

    uint32_t Width() const { return width_; }
    uint32_t Height() const { return height_; }
    size_t RowBytes() const { return size_t{width_} * bytesPerPixel_; }

    // Whether rows become columns. If so only PutColumns takes them, else only the other two.
    bool SwapsSides() const { return swapsAxes_; }
    // Whether stored rows are those of the shown picture: nothing is left to do with them.
    bool IsUpright() const { return !swapsAxes_ && !mirrorsX_ && !mirrorsY_; }
    // The row of the shown picture where the stored row `y` belongs, and what is left to do there.
    uint8_t* RowOf(uint32_t y) const { return rows_.Row(mirrorsY_ ? height_ - 1 - y : y); }
    void FinishRow(uint8_t* row) const;
    // `count` stored rows, which begin at `band`. Different rows may be put by different threads at
    // once.
    void PutColumns(uint32_t firstRow, uint32_t count, const uint8_t* band, size_t stride) const;

  private:
    template <unsigned kBytes>
    void Mirror(uint8_t* row) const;
    template <unsigned kBytes>
    void PutColumnsOf(uint32_t firstRow, uint32_t count, const uint8_t* band, size_t stride) const;

    PictureRows rows_;
    uint32_t width_;
    uint32_t height_;
    unsigned bytesPerPixel_;
    bool swapsAxes_;
    bool mirrorsX_;  // a stored row runs against its direction in the shown picture
    bool mirrorsY_;  // the stored rows come in reverse order
};

}  // namespace tessary::codec
