// Colours of CIE L*a*b*, as printers' files hold them.
#pragma once

#include <array>
#include <cstdint>

namespace tessary::codec {

// Lightness 0 to 100, a and b about -128 to 127, under D50, as blue, green, red of sRGB; what sRGB
// lacks is cut off. Formulas: CIE 15, ISO 11664-4; the adaptation to D65 is Bradford's.
std::array<uint8_t, 3> LabToSrgb(float lightness, float a, float b);

}  // namespace tessary::codec
