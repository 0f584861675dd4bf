#include "helpers/kernel/light_levels.h"

#include <cmath>

namespace tessary::kernel {
namespace {

// IEC 61966-2-1.
double LightOfSample(double sample) {
    return sample <= 0.04045 ? sample / 12.92 : std::pow((sample + 0.055) / 1.055, 2.4);
}

}  // namespace

LightLevels::LightLevels() {
    size_t next = 0;
    for (int level = 0; level < 256; ++level) {
        light_[static_cast<size_t>(level)] =
            static_cast<int16_t>(std::lround(LightOfSample(level / 255.0) * kFullLight));
        // Up to half way to the next level.
        const double end = level == 255 ? 1 : LightOfSample((level + 0.5) / 255);
        for (; next < levels_.size() && static_cast<double>(next) <= end * 2 * kFullLight; ++next)
            levels_[next] = static_cast<uint8_t>(level);
    }
}

const LightLevels& LightLevels::OfSrgb() {
    static const LightLevels levels;
    return levels;
}

}  // namespace tessary::kernel
