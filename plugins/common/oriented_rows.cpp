#include "plugins/common/oriented_rows.h"

#include <algorithm>
#include <utility>

namespace tessary::codec {
namespace {

// Rows that are collected before they become columns: every row of the shown picture then gets a
// run of 64 neighbouring pixels instead of one, and the band stays in the second-level cache.
constexpr uint32_t kBandRows = 64;

}  // namespace

OrientedRows::OrientedRows(const RowPlaces& places, RowConversion conversion) : places_(places) {
    if (conversion.convert) {
        team_.emplace(places, std::move(conversion));
    } else if (places.SwapsSides()) {
        // An odd number of cache lines, so that the rows of a column do not fight for one cache
        // set.
        bandStride_ = ((places.RowBytes() + 63) / 64 | 1) * 64;
        band_.resize(bandStride_ * std::min(kBandRows, places.Height()));
    }
}

uint8_t* OrientedRows::RowBuffer(uint32_t y) {
    if (team_) return team_->RowBuffer(y);
    if (places_.SwapsSides()) return band_.data() + y % kBandRows * bandStride_;
    return places_.RowOf(y);
}

void OrientedRows::RowDone(uint32_t y) {
    if (team_) return team_->RowDone(y);
    if (!places_.SwapsSides()) return places_.FinishRow(places_.RowOf(y));
    const uint32_t inBand = y % kBandRows;
    if (inBand + 1 == kBandRows || y + 1 == places_.Height()) {
        places_.PutColumns(y - inBand, inBand + 1, band_.data(), bandStride_);
    }
}

uint8_t* OrientedRows::WholePicture(ptrdiff_t& stride) {
    if (team_ || !places_.IsUpright()) return nullptr;
    uint8_t* const first = places_.RowOf(0);
    stride = places_.Height() > 1 ? places_.RowOf(1) - first
                                  : static_cast<ptrdiff_t>(places_.RowBytes());
    return first;
}

void OrientedRows::Finish() {
    if (team_) team_->Finish();
}

}  // namespace tessary::codec
