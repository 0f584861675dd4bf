// The filters that make the rows of a PNG file compressible (ISO/IEC 15948, clause 9).
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessary::dcpng {

// Bytes that are read on both sides of a row, and written behind a filtered one.
constexpr size_t kRowMargin = 16;

// Writes the filter's number and the filtered row, 1 + `size` bytes, to `out`, and up to kRowMargin
// bytes of no meaning behind. The filter is the one whose results, taken as signed numbers, have
// the smallest sum of magnitudes. `row` is the row and `above` the one over it, of zeros for the
// first row; around both kRowMargin bytes can be read, and those in front are 0. A pixel has
// `pixelBytes` bytes, at most 4.
void FilterRow(const uint8_t* row, const uint8_t* above, size_t size, size_t pixelBytes,
               uint8_t* out);

// The same with the filter that leaves the row as it is.
void CopyRow(const uint8_t* row, size_t size, uint8_t* out);

}  // namespace tessary::dcpng
