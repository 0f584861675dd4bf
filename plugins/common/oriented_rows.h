// Puts the rows of a picture that a camera held sideways or upside down where they belong while
// they are decoded, and converts them on the way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/common/row_places.h"
#include "plugins/common/row_team.h"

namespace tessary::codec {

// Usage: for every stored row from the top, decode into RowBuffer(y), then call RowDone(y); Finish
// at the end.
class OrientedRows {
  public:
    explicit OrientedRows(const RowPlaces& places, RowConversion conversion = {});

    // Room for the stored row `y`: the row of the picture itself whenever that is possible.
    uint8_t* RowBuffer(uint32_t y);

    // The row is decoded: converts and mirrors it, or turns the collected rows into columns.
    void RowDone(uint32_t y);

    // For decoders that write all rows at once: the first pixel of row 0 where each row can be
    // decoded into its place in the picture and nothing is left to do then, with the bytes from one
    // row to the next in `stride`; else null. In place of the other three.
    uint8_t* WholePicture(ptrdiff_t& stride);

    // All rows are in their places then.
    void Finish();

  private:
    const RowPlaces places_;
    std::optional<RowTeam> team_;  // where rows are converted
    std::vector<uint8_t> band_;    // collected rows, when they become columns
    size_t bandStride_ = 0;
};

}  // namespace tessary::codec
