#include "helpers/kernel/source_rows.h"

#include <algorithm>

namespace tessary::kernel {
namespace {

// A ring larger than this is only wanted for the most extreme reductions. Those get a smaller one
// and unpack some rows more than once.
constexpr size_t kMostRingBytes = 16u << 20;
constexpr int32_t kLeastRingRows = 16;

bool ReadsDirectly(const dib::DibView& view) {
    const uint32_t bits = dib::BitsPerPixel(view.Format());
    return bits >= 24 && view.Format() != dib::PixelFormat::kBgra32 &&
           dib::RowBytes(static_cast<uint64_t>(view.Width()), bits) >= SourceRows::kLeastRowBytes;
}

}  // namespace

size_t SourceRows::PixelBytes(const dib::DibView& view) {
    return ReadsDirectly(view) ? dib::BitsPerPixel(view.Format()) / 8u : 3;
}

size_t SourceRows::RowBytes(const dib::DibView& view) {
    return std::max(static_cast<size_t>(view.Width()) * PixelBytes(view), kLeastRowBytes);
}

SourceRows::SourceRows(const dib::DibView& view, int32_t window, dib::Backdrop backdrop)
    : view_(view),
      reader_(view, backdrop),
      direct_(ReadsDirectly(view)),
      window_(window),
      rowBytes_(RowBytes(view)) {
    if (direct_) return;
    const size_t affordable = kMostRingBytes / rowBytes_;
    const int32_t most = static_cast<int32_t>(std::max<size_t>(affordable, kLeastRingRows));
    window_ = std::min(window, most);
    ring_.resize(rowBytes_ * static_cast<size_t>(window_));
    held_.assign(static_cast<size_t>(window_), -1);
}

const uint8_t* SourceRows::Row(int32_t y) {
    if (direct_) return view_.Row(y).data();
    const size_t slot = static_cast<size_t>(y % window_);
    const std::span<uint8_t> row = std::span(ring_).subspan(slot * rowBytes_, rowBytes_);
    if (held_[slot] != y) {
        reader_.Row(view_.Row(y), row);
        held_[slot] = y;
    }
    return row.data();
}

}  // namespace tessary::kernel
