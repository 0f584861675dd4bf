// Inks without a profile.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessary::codec {

// Pixels of cyan, magenta, yellow and black, a byte each, become blue, green, red: each ink takes
// its light away. Inverted ones count from full ink (0) to no ink. In place if wanted.
void InksToColors(const uint8_t* inks, uint8_t* out, size_t pixels, bool areInverted);

}  // namespace tessary::codec
