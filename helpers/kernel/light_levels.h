// Between the levels of stored samples and the light that they stand for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tessary::kernel {

// Full light: as much as the sums of 16-bit words hold. The first level of sRGB is 10 of these.
constexpr int kFullLight = 0x7FFF;

class LightLevels {
  public:
    static const LightLevels& OfSrgb();

    int16_t LightOf(uint8_t level) const { return light_[level]; }
    // Of half steps of light, from 0 to 2 * kFullLight.
    uint8_t LevelOf(size_t halfSteps) const { return levels_[halfSteps]; }

  private:
    LightLevels();

    std::array<int16_t, 256> light_;
    std::array<uint8_t, 2 * kFullLight + 1> levels_;
};

}  // namespace tessary::kernel
