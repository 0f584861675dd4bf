// Rows of a frame as the picture stores them. Portable: knows bits, not the system's decoders.
#pragma once

#include <cstdint>

namespace tessary::wic {

// The pixels of a packed row (1, 2, 4 or 8 bits each), one byte each; of 16-bit ones the
// high byte.
void UnpackRow(const uint8_t* in, uint8_t* out, uint32_t width, unsigned bitCount);

}  // namespace tessary::wic
