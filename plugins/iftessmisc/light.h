// Linear light without an upper end, as floating-point pictures have it, on its way to samples of 8
// bits.
#pragma once

#include <array>
#include <cstdint>

namespace tessary::misc {

// What is at most 1 is shown as it is. Of a picture with brighter places, light up to 0.75 stays
// what it is too, and what is above is compressed, so that the brightest just becomes white: with
// t = (light - 0.75) / 0.25, and T the same of the brightest, t becomes t (1 + t / T²) / (1 + t).
// That is t itself for T = 1, and rises everywhere. The brightest of a pixel's three colours goes
// that way, and the others shrink as it does: hues stay.
class LightCurve {
  public:
    // `brightest`: the largest sample of the picture.
    explicit LightCurve(float brightest);

    // Light to a sample of sRGB.
    uint8_t Level(float light) const;
    // Red, green and blue to blue, green and red.
    void Put(const std::array<float, 3>& light, uint8_t* bgr) const;

  private:
    float Compressed(float light) const;
    uint8_t Encoded(float light) const;

    bool isNeeded_;
    float peak_;  // T
    const uint8_t* levels_;
};

// A sample that is no number, or below 0, as 0; without an upper end otherwise.
float UsableLight(float light);

}  // namespace tessary::misc
