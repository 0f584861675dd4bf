// Puts the rows of a picture that a camera held sideways or upside down where they belong while
// they are decoded. The orientation values are those of the TIFF tag 0x0112, which EXIF uses too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugins/common/picture_target.h"

namespace tessary::codec {

constexpr uint16_t kUprightOrientation = 1;

// Whether the shown picture is as wide as the stored one is high (orientations 5 to 8).
constexpr bool SwapsAxes(uint16_t orientation) {
    return orientation >= 5 && orientation <= 8;
}

// Pixels of 1 or 3 bytes only. Usage: for every stored row from the top, decode into RowBuffer(y),
// then call RowDone(y). Orientations outside 1 to 8 count as 1.
class OrientedRows {
  public:
    // `rows` are those of the shown picture; `width` and `height` are those of the stored one.
    OrientedRows(const PictureRows& rows, uint32_t width, uint32_t height, unsigned bytesPerPixel,
                 uint16_t orientation);

    // Room for the stored row `y`: the row of the picture itself whenever that is possible.
    uint8_t* RowBuffer(uint32_t y);

    // The row is decoded: mirrors it, or turns the collected rows into columns.
    void RowDone(uint32_t y);

  private:
    void MirrorRow(uint8_t* row) const;
    void PlaceColumns(uint32_t firstRow, uint32_t count) const;
    template <unsigned Bytes>
    void PlaceColumnsOf(uint32_t firstRow, uint32_t count) const;

    PictureRows rows_;
    uint32_t width_;
    uint32_t height_;
    unsigned bytesPerPixel_;
    bool swapsAxes_;
    bool mirrorsX_;              // a stored row runs against its direction in the shown picture
    bool mirrorsY_;              // the stored rows come in reverse order
    std::vector<uint8_t> band_;  // collected rows, when they become columns
    size_t bandStride_ = 0;
};

}  // namespace tessary::codec
