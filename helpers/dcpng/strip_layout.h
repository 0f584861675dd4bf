// How the rows of a PNG file are cut into strips.
#pragma once

#include <compare>
#include <vector>

#include "helpers/dcpng/png_passes.h"

namespace tessary::dcpng {

// A row of the file: which one of which pass. The end is row 0 behind the last pass.
struct RowPosition {
    size_t pass = 0;
    uint32_t row = 0;
    auto operator<=>(const RowPosition&) const = default;
};

// Strips of whole rows, which may go on from one pass into the next. Where they are cut depends on
// the picture's form alone: the same picture gives the same file on every machine.
class StripLayout {
  public:
    explicit StripLayout(std::vector<PngPass> passes);

    const std::vector<PngPass>& Passes() const { return passes_; }
    size_t Count() const { return starts_.size() - 1; }
    RowPosition Begin(size_t strip) const { return starts_[strip]; }
    RowPosition End(size_t strip) const { return starts_[strip + 1]; }
    // The position behind a row.
    RowPosition Next(RowPosition at) const {
        return at.row + 1 < passes_[at.pass].height ? RowPosition{at.pass, at.row + 1}
                                                    : RowPosition{at.pass + 1, 0};
    }
    // Bytes of the rows of a strip in the file, with one more each for its filter.
    size_t Bytes(size_t strip) const;

  private:
    std::vector<PngPass> passes_;
    std::vector<RowPosition> starts_;  // and the end
};

}  // namespace tessary::dcpng
