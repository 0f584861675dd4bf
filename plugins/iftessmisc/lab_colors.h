// CIE L*a*b* of the white D50, as files of prints have it, to sRGB.
#pragma once

#include <array>
#include <cstdint>

#include "plugins/iftessmisc/light.h"

namespace tessary::misc {

class LabColors {
  public:
    // L of 0 to 100, a and b around 0, to blue, green and red. What sRGB does not have is cut.
    void Put(const std::array<float, 3>& lab, uint8_t* bgr) const;

  private:
    LightCurve plain_{1};
};

}  // namespace tessary::misc
