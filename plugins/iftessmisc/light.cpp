#include "plugins/iftessmisc/light.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessary::misc {
namespace {

constexpr float kKnee = 0.75f;
constexpr float kMostLight = 1e30f;
constexpr size_t kSteps = 65536;

// The levels of sRGB of light, each step's middle. The darkest level is 10 steps wide, the next
// ones 20.
const std::vector<uint8_t>& SrgbLevels() {
    static const std::vector<uint8_t> levels = [] {
        std::vector<uint8_t> made(kSteps);
        for (size_t i = 0; i < kSteps; ++i) {
            const double light = (static_cast<double>(i) + 0.5) / kSteps;
            const double level =
                light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            made[i] = static_cast<uint8_t>(std::lround(level * 255));
        }
        return made;
    }();
    return levels;
}

}  // namespace

float UsableLight(float light) {
    // NaN fails every comparison.
    return light > 0 ? std::min(light, kMostLight) : 0;
}

LightCurve::LightCurve(float brightest)
    : isNeeded_(brightest > 1),
      peak_((brightest - kKnee) / (1 - kKnee)),
      levels_(SrgbLevels().data()) {}

float LightCurve::Compressed(float light) const {
    if (light <= kKnee) return light;
    const float t = (light - kKnee) / (1 - kKnee);
    return kKnee + (1 - kKnee) * (t / (1 + t)) * (1 + t / peak_ / peak_);
}

uint8_t LightCurve::Encoded(float light) const {
    const auto step = static_cast<size_t>(std::min(light, 1.0f) * kSteps);
    return levels_[std::min(step, kSteps - 1)];
}

uint8_t LightCurve::Level(float light) const {
    light = UsableLight(light);
    return Encoded(isNeeded_ ? Compressed(light) : light);
}

void LightCurve::Put(const std::array<float, 3>& light, uint8_t* bgr) const {
    const std::array<float, 3> usable{UsableLight(light[0]), UsableLight(light[1]),
                                      UsableLight(light[2])};
    const float most = std::max({usable[0], usable[1], usable[2]});
    const float factor = isNeeded_ && most > kKnee ? Compressed(most) / most : 1;
    for (size_t i = 0; i < 3; ++i)
        bgr[i] = Encoded(usable[2 - i] * factor);
}

}  // namespace tessary::misc
