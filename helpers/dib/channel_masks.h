// Channels of 16-, 24- and 32-bit pixels with any masks, as bytes.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace tessary::dib {

// Takes one channel out of a pixel and brings it to 8 bits: longer channels lose their low bits,
// shorter ones repeat their top bits below. A mask of 0 gives 0.
class ChannelReader {
  public:
    explicit ChannelReader(uint32_t mask) : mask_(mask) {
        if (mask == 0) return;
        const int end = 32 - std::countl_zero(mask);
        const int bits = end - std::countr_zero(mask);
        shift_ = bits > 8 ? end - 8 : end - bits;
        const int kept = bits > 8 ? 8 : bits;
        for (uint32_t value = 0; value < 1u << kept; ++value) {
            uint32_t byte = 0;
            for (int shift = 8 - kept; shift > -kept; shift -= kept) {
                byte |= shift >= 0 ? value << shift : value >> -shift;
            }
            bytes_[value] = static_cast<uint8_t>(byte);
        }
    }

    uint8_t operator()(uint32_t pixel) const { return bytes_[(pixel & mask_) >> shift_]; }

  private:
    uint32_t mask_;
    int shift_ = 0;
    std::array<uint8_t, 256> bytes_{};
};

}  // namespace tessary::dib
