// The short way between two profiles of RGB that are each made of three curves and a matrix, as
// those of cameras, working spaces and most monitors are: two tables and two additions for a pixel.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "helpers/color/color_profile.h"

namespace tessary::color {

class MatrixPath {
  public:
    // Null when one of the profiles is of another kind.
    static std::unique_ptr<const MatrixPath> Make(const Profile& from, const Profile& to);

    // Pixels of 8-bit blue, green, red, and of an alpha that stays as it is when kBytes is 4. In
    // place if wanted.
    template <size_t kBytes>
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const;

  private:
    // Levels of light that are told apart: near black a level of sRGB is 20 of these.
    static constexpr int kLevels = 1 << 14;

    struct Light {
        float blue, green, red, unused;
    };

    // What each level of a channel gives to the channels of the target, 0 to kLevels - 1.
    std::array<std::array<Light, 256>, 3> light_;
    // Levels of the target by its light; shared by channels with the same curve.
    std::array<std::shared_ptr<const std::vector<uint8_t>>, 3> levels_;
};

}  // namespace tessary::color
