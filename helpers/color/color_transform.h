// From the colours of one profile to those of another, row by row.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "helpers/color/color_profile.h"

namespace tessary::color {

// How the samples of a stored pixel lie. 16-bit samples have their high byte first, as PNG has
// them, or last, as they lie in memory. Ink counts from no ink (0) to full ink, or, inverted, the
// other way, as Adobe's programs write JPEG.
enum class Layout : uint8_t {
    kBgr8,
    kBgra8,
    kBgr16BigEndian,
    kBgra16BigEndian,
    kRgb16,
    kCmyk8,
    kCmyk8Inverted,
};

constexpr size_t BytesOf(Layout layout) {
    constexpr std::array<uint8_t, 7> kBytes{3, 4, 6, 8, 6, 4, 4};
    return kBytes[static_cast<size_t>(layout)];
}

// What comes out: 8-bit blue, green, red, and the alpha as it was where there is one.
constexpr size_t TargetBytesOf(Layout layout) {
    return layout == Layout::kBgra8 || layout == Layout::kBgra16BigEndian ? 4 : 3;
}

// Relative colorimetric with the black points laid on each other: colours that both spaces have
// stay what they are, white stays white, and the shadows of prints keep their details. Perceptual
// tables would change colours that need no change, each maker's in another manner, and most
// profiles of pictures have none.
class Transform {
  public:
    // Null when the profiles' tables make no sense, or the model of `from` is not that of the
    // layout. `to` is of RGB.
    static std::unique_ptr<const Transform> Make(const Profile& from, const Profile& to,
                                                 Layout layout);
    virtual ~Transform() = default;

    // Converts that many pixels, from any number of threads at once. In place where a pixel's size
    // stays the same.
    virtual void Convert(const uint8_t* in, uint8_t* out, size_t pixels) const = 0;
    // Whether that takes next to no time: what is seen of a picture can be converted each time that
    // it is drawn.
    virtual bool IsQuick() const { return false; }
};

// Whether colours stay what they are, but for one level of 255, when numbers in `from` are taken
// for numbers in `to`, both of RGB.
bool AreAlike(const Profile& from, const Profile& to);

// A level of blue, green and red.
using Color = std::array<uint8_t, 3>;

// What the 256 levels of a grey picture become in `to`; `from` is of greys, or of RGB. Null when
// the tables make no sense.
std::optional<std::array<Color, 256>> GreyColors(const Profile& from, const Profile& to);

// What the 256 levels of samples of 8 bits become, or the 65536 ones of 16 bits, as levels of grey
// of 8 bits; `from` is of greys. Empty when the tables make no sense.
std::vector<uint8_t> GreyLevels(const Profile& from, const Profile& to, bool areDeep);

}  // namespace tessary::color
