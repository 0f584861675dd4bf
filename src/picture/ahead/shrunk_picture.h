// A picture made so small that hundreds of them fit on a screen.
#pragma once

#include <windows.h>

#include "helpers/dib/backdrop.h"
#include "picture/picture.h"

namespace tessary {

// What shows through pixels with alpha: squares of two greys, or one level.
struct ThumbGround {
    bool isSquares = true;
    dib::Backdrop level = dib::Backdrop::kWhite;
};

// The size of a picture in a square of `side` pixels: as it is where it fits, and one pixel at
// least.
SIZE SizeInSquare(int width, int height, int side);

// Of that size, opaque, with 24 bits per pixel: each pixel is the average of those that it stands
// for. Empty without memory. From any thread.
Picture ShrunkPicture(const Picture& picture, int side, const ThumbGround& ground);

}  // namespace tessary
