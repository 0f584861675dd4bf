// Samples of every depth and kind, unpacked.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessary::tiff {

// Unpacks samples as libtiff hands them out: of 16 bits and more in this machine's order, of fewer
// packed from the high bit of each byte on. `format` is a SAMPLEFORMAT_… of TIFF. Numbers become
// 0 to 65535, their whole range; signed ones begin at their least one; of floating ones 1 is
// 65535, and what lies outside of 0 to 1 is cut off.
void UnpackSamples(const uint8_t* raw, size_t count, uint16_t bits, uint16_t format, uint16_t* out);

// Unsigned ones of up to 16 bits, as they are.
void UnpackIndexes(const uint8_t* raw, size_t count, uint16_t bits, uint16_t* out);

}  // namespace tessary::tiff
