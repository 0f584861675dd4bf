#include "plugins/iftessmisc/lab_colors.h"

namespace tessary::misc {
namespace {

constexpr float kWhiteX = 0.96422f, kWhiteZ = 0.82521f;

float Cube(float value) {
    constexpr float kEdge = 6.0f / 29;
    return value > kEdge ? value * value * value : 3 * kEdge * kEdge * (value - 4.0f / 29);
}

}  // namespace

void LabColors::Put(const std::array<float, 3>& lab, uint8_t* bgr) const {
    const float middle = (lab[0] + 16) / 116;
    const float x = kWhiteX * Cube(middle + lab[1] / 500);
    const float y = Cube(middle);
    const float z = kWhiteZ * Cube(middle - lab[2] / 200);
    // From D50 by Bradford's adaptation.
    plain_.Put({3.1338561f * x - 1.6168667f * y - 0.4906146f * z,
                -0.9787684f * x + 1.9161415f * y + 0.0334540f * z,
                0.0719453f * x - 0.2289914f * y + 1.4052427f * z},
               bgr);
}

}  // namespace tessary::misc
