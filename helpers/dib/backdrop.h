// What pixels with alpha are laid over where they lose it.
#pragma once

#include <cstdint>

namespace tessary::dib {

// Its level of grey.
enum class Backdrop : uint8_t { kBlack = 0, kGrey = 0x80, kWhite = 0xFF };

}  // namespace tessary::dib
