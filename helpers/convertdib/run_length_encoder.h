// The run-length encoding of bitmap files (BI_RLE4 and BI_RLE8 of the Windows GDI documents).
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tessary::convertdib {

// Both append the codes of one row, without an end-of-line code, to `codes`. The row is given as
// one palette index per byte: below 16 for RLE4.
void EncodeRle4(std::span<const uint8_t> row, std::vector<uint8_t>& codes);
void EncodeRle8(std::span<const uint8_t> row, std::vector<uint8_t>& codes);

// What stands between two rows, and behind the last one.
constexpr uint8_t kRleEndOfLine[] = {0, 0};
constexpr uint8_t kRleEndOfBitmap[] = {0, 1};

}  // namespace tessary::convertdib
