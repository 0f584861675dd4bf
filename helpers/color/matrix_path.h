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
    enum class Depth : uint32_t { kByte = 256, kDeep = 65536 };  // levels of a stored sample

    // Null when one of the profiles is of another kind.
    static std::unique_ptr<const MatrixPath> Make(const Profile& from, const Profile& to,
                                                  Depth depth = Depth::kByte);

    // Pixels of 8-bit blue, green, red, and of an alpha that stays as it is when kBytes is 4. In
    // place if wanted.
    template <size_t kBytes>
    void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const;

    // Of kDeep: pixels of three samples of 16 bits, blue or red first, and of an alpha when
    // kSamples is 4, become bytes of blue, green, red and alpha.
    template <size_t kSamples, bool kBigEndian, bool kRedFirst>
    void ConvertDeep(const uint8_t* in, uint8_t* out, size_t pixels) const;

  private:
    // Levels of light that are told apart: near black a level of sRGB is 20 of these.
    static constexpr int kLevels = 1 << 14;

    struct Light {
        float blue, green, red, unused;
    };

    // From what three samples, blue first, give to the channels of the target.
    void Put(size_t blue, size_t green, size_t red, uint8_t* out) const;

    // What each level of a channel gives to the channels of the target, 0 to kLevels - 1.
    std::array<std::vector<Light>, 3> light_;
    // Levels of the target by its light; shared by channels with the same curve.
    std::array<std::shared_ptr<const std::vector<uint8_t>>, 3> levels_;
};

}  // namespace tessary::color
