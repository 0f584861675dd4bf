// Two pages as one picture.
#pragma once

#include "picture/picture.h"

namespace tessary {

// Both pictures side by side, of 24 bits per pixel, each as high as the higher one; in the middle
// where they differ by so little that nobody sees it. Colours are in sRGB, or in those of both
// where they have the same; what is transparent is white. Empty for what would be too large, and
// without memory. Neither of them may be empty.
Picture SpreadPicture(const Picture& left, const Picture& right);

}  // namespace tessary
