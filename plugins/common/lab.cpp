#include "plugins/common/lab.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessary::codec {
namespace {

float CubeOrLine(float t) {
    constexpr float kLimit = 6.0F / 29;
    return t > kLimit ? t * t * t : 3 * kLimit * kLimit * (t - 4.0F / 29);
}

// Light to levels of sRGB: each step has the level of its middle, which is close enough that the
// nearest level is met.
constexpr size_t kSteps = 16384;

std::vector<uint8_t> MakeLevels() {
    std::vector<uint8_t> levels(kSteps + 1);
    for (size_t i = 0; i <= kSteps; ++i) {
        const double light = std::min((static_cast<double>(i) + 0.5) / kSteps, 1.0);
        const double value =
            light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
        levels[i] = static_cast<uint8_t>(std::lround(value * 255));
    }
    return levels;
}

uint8_t LevelOf(float light) {
    static const std::vector<uint8_t> levels = MakeLevels();
    return levels[static_cast<size_t>(std::clamp(light, 0.0F, 1.0F) * kSteps)];
}

}  // namespace

std::array<uint8_t, 3> LabToSrgb(float lightness, float a, float b) {
    const float middle = (lightness + 16) / 116;
    const float x = 0.96422F * CubeOrLine(middle + a / 500);
    const float y = CubeOrLine(middle);
    const float z = 0.82521F * CubeOrLine(middle - b / 200);
    // From XYZ under D50 to linear sRGB.
    const float red = 3.1338561F * x - 1.6168667F * y - 0.4906146F * z;
    const float green = -0.9787684F * x + 1.9161415F * y + 0.0334540F * z;
    const float blue = 0.0719453F * x - 0.2289914F * y + 1.4052427F * z;
    return {LevelOf(blue), LevelOf(green), LevelOf(red)};
}

}  // namespace tessary::codec
