#include "plugins/common/oriented_rows.h"

#include <algorithm>
#include <cstring>

namespace tessary::codec {
namespace {

// Rows that are collected before they become columns: every row of the shown picture then gets a
// run of 64 neighbouring pixels instead of one, and the band stays in the second-level cache.
constexpr uint32_t kBandRows = 64;

}  // namespace

OrientedRows::OrientedRows(const PictureRows& rows, uint32_t width, uint32_t height,
                           unsigned bytesPerPixel, uint16_t orientation)
    : rows_(rows),
      width_(width),
      height_(height),
      bytesPerPixel_(bytesPerPixel),
      swapsAxes_(SwapsAxes(orientation)),
      mirrorsX_(orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8),
      mirrorsY_(orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7) {
    if (!swapsAxes_) return;
    // An odd number of cache lines, so that the rows of a column do not fight for one cache set.
    const size_t lines = (size_t{width} * bytesPerPixel + 63) / 64;
    bandStride_ = (lines | 1) * 64;
    band_.resize(bandStride_ * std::min(kBandRows, height));
}

uint8_t* OrientedRows::RowBuffer(uint32_t y) {
    if (swapsAxes_) return band_.data() + y % kBandRows * bandStride_;
    return rows_.Row(mirrorsY_ ? height_ - 1 - y : y);
}

void OrientedRows::RowDone(uint32_t y) {
    if (!swapsAxes_) {
        if (mirrorsX_) MirrorRow(RowBuffer(y));
        return;
    }
    const uint32_t inBand = y % kBandRows;
    if (inBand + 1 == kBandRows || y + 1 == height_) PlaceColumns(y - inBand, inBand + 1);
}

void OrientedRows::MirrorRow(uint8_t* row) const {
    if (bytesPerPixel_ == 1) {
        std::reverse(row, row + width_);
        return;
    }
    uint8_t* left = row;
    uint8_t* right = row + size_t{width_ - 1} * 3;
    for (; left < right; left += 3, right -= 3)
        std::swap_ranges(left, left + 3, right);
}

void OrientedRows::PlaceColumns(uint32_t firstRow, uint32_t count) const {
    if (bytesPerPixel_ == 1) {
        PlaceColumnsOf<1>(firstRow, count);
    } else {
        PlaceColumnsOf<3>(firstRow, count);
    }
}

template <unsigned Bytes>
void OrientedRows::PlaceColumnsOf(uint32_t firstRow, uint32_t count) const {
    const uint32_t firstColumn = mirrorsY_ ? height_ - firstRow - count : firstRow;
    // Reading from the band's last row upwards mirrors without a second kind of loop.
    const uint8_t* bandStart = band_.data() + (mirrorsY_ ? (count - 1) * bandStride_ : 0);
    const ptrdiff_t step =
        mirrorsY_ ? -static_cast<ptrdiff_t>(bandStride_) : static_cast<ptrdiff_t>(bandStride_);
    for (uint32_t x = 0; x < width_; ++x) {
        uint8_t* out = rows_.Row(mirrorsX_ ? width_ - 1 - x : x) + size_t{firstColumn} * Bytes;
        const uint8_t* in = bandStart + size_t{x} * Bytes;
        for (uint32_t i = 0; i < count; ++i, in += step, out += Bytes) {
            std::memcpy(out, in, Bytes);
        }
    }
}

}  // namespace tessary::codec
