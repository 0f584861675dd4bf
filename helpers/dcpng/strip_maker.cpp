#include "helpers/dcpng/strip_maker.h"

#include <algorithm>

#include "helpers/dcpng/row_filter.h"

namespace tessary::dcpng {

StripMaker::StripMaker(const PngRows& rows, const StripLayout& layout, int level)
    : rows_(rows),
      layout_(layout),
      // Indexes and packed pixels are no numbers whose differences would be small.
      filters_(level != 0 && rows.Kind() != PngKind::kPalette && rows.BitDepth() == 8),
      pixelBytes_(std::max<size_t>(rows.BitsPerPixel() / 8, 1)),
      deflater_(DeflaterStock::Take(level)),
      row_(rows.RowBytes() + 2 * kRowMargin),
      above_(row_.size()),
      pictureRow_(layout.Passes().front().stepX == 1 ? 0 : rows.RowBytes()) {}

void StripMaker::LoadRow(RowPosition at, std::vector<uint8_t>& into) {
    const PngPass& pass = layout_.Passes()[at.pass];
    const auto y = static_cast<int32_t>(pass.top + at.row * pass.stepY);
    const auto out = std::span(into).subspan(kRowMargin);
    if (pictureRow_.empty()) return rows_.Pack(y, out);
    rows_.Pack(y, pictureRow_);
    TakePixels(pass, rows_.BitsPerPixel(), pictureRow_, out);
}

void StripMaker::LoadAbove(RowPosition at) {
    if (at.row != 0) return LoadRow({at.pass, at.row - 1}, above_);
    std::ranges::fill(above_, uint8_t{0});
}

void StripMaker::Make(size_t strip, DeflatedStrip& to) {
    const size_t size = layout_.Bytes(strip);
    strip_.resize(size + kRowMargin);
    uint8_t* out = strip_.data();
    for (RowPosition at = layout_.Begin(strip); at != layout_.End(strip); at = layout_.Next(at)) {
        const size_t rowBytes = layout_.Passes()[at.pass].rowBytes;
        if (filters_ && (at == layout_.Begin(strip) || at.row == 0)) LoadAbove(at);
        LoadRow(at, row_);
        if (filters_) {
            FilterRow(row_.data() + kRowMargin, above_.data() + kRowMargin, rowBytes, pixelBytes_,
                      out);
        } else {
            CopyRow(row_.data() + kRowMargin, rowBytes, out);
        }
        std::swap(row_, above_);
        out += rowBytes + 1;
    }
    deflater_->Deflate(std::span(strip_).first(size), strip + 1 == layout_.Count(), to);
}

}  // namespace tessary::dcpng
