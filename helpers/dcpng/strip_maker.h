// Makes the compressed strips of a PNG file.
#pragma once

#include "helpers/dcpng/deflater_stock.h"
#include "helpers/dcpng/png_rows.h"
#include "helpers/dcpng/strip_layout.h"

namespace tessary::dcpng {

// Packs, filters and compresses the rows of any strip; strips are independent of each other. One
// for each thread.
class StripMaker {
  public:
    // `rows` and `layout` must outlive the object. Throws std::bad_alloc.
    StripMaker(const PngRows& rows, const StripLayout& layout, int level);

    // Throws std::bad_alloc.
    void Make(size_t strip, DeflatedStrip& to);

  private:
    // The rows that follow a position are filtered against the one above it.
    void LoadAbove(RowPosition at);
    void LoadRow(RowPosition at, std::vector<uint8_t>& into);

    const PngRows& rows_;
    const StripLayout& layout_;
    bool filters_;
    size_t pixelBytes_;
    DeflaterStock::Lent deflater_;
    // With margins around: a row of the pass and the one above it.
    std::vector<uint8_t> row_;
    std::vector<uint8_t> above_;
    std::vector<uint8_t> pictureRow_;  // of which a pass takes only some pixels
    std::vector<uint8_t> strip_;       // filtered
};

}  // namespace tessary::dcpng
