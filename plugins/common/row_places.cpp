#include "plugins/common/row_places.h"

#include <algorithm>
#include <cstring>

namespace tessary::codec {

RowPlaces::RowPlaces(const PictureRows& rows, uint32_t width, uint32_t height,
                     unsigned bytesPerPixel, uint16_t orientation)
    : rows_(rows),
      width_(width),
      height_(height),
      bytesPerPixel_(bytesPerPixel),
      swapsAxes_(codec::SwapsAxes(orientation)),
      mirrorsX_(orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8),
      mirrorsY_(orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7) {}

template <unsigned kBytes>
void RowPlaces::Mirror(uint8_t* row) const {
    uint8_t* left = row;
    uint8_t* right = row + size_t{width_ - 1} * kBytes;
    for (; left < right; left += kBytes, right -= kBytes)
        std::swap_ranges(left, left + kBytes, right);
}

void RowPlaces::FinishRow(uint8_t* row) const {
    if (!mirrorsX_) return;
    if (bytesPerPixel_ == 1) {
        std::reverse(row, row + width_);
    } else if (bytesPerPixel_ == 3) {
        Mirror<3>(row);
    } else {
        Mirror<4>(row);
    }
}

void RowPlaces::PutColumns(uint32_t firstRow, uint32_t count, const uint8_t* band,
                           size_t stride) const {
    if (bytesPerPixel_ == 1) {
        PutColumnsOf<1>(firstRow, count, band, stride);
    } else if (bytesPerPixel_ == 3) {
        PutColumnsOf<3>(firstRow, count, band, stride);
    } else {
        PutColumnsOf<4>(firstRow, count, band, stride);
    }
}

template <unsigned kBytes>
void RowPlaces::PutColumnsOf(uint32_t firstRow, uint32_t count, const uint8_t* band,
                             size_t stride) const {
    const uint32_t firstColumn = mirrorsY_ ? height_ - firstRow - count : firstRow;
    // Reading from the band's last row upwards mirrors without a second kind of loop.
    const uint8_t* bandStart = band + (mirrorsY_ ? (count - 1) * stride : 0);
    const ptrdiff_t step =
        mirrorsY_ ? -static_cast<ptrdiff_t>(stride) : static_cast<ptrdiff_t>(stride);
    for (uint32_t x = 0; x < width_; ++x) {
        uint8_t* out = rows_.Row(mirrorsX_ ? width_ - 1 - x : x) + size_t{firstColumn} * kBytes;
        const uint8_t* in = bandStart + size_t{x} * kBytes;
        for (uint32_t i = 0; i < count; ++i, in += step, out += kBytes) {
            std::memcpy(out, in, kBytes);
        }
    }
}

}  // namespace tessary::codec
