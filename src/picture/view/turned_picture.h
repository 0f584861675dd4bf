// Pictures that are turned and mirrored, without loss.
#pragma once

#include <cstdint>

#include "helpers/exif/orientation.h"
#include "picture/picture.h"

namespace tessary {

enum class Turn : uint8_t {
    kRight,   // by a quarter, clockwise
    kLeft,    // by a quarter, counterclockwise
    kHalf,    // upside down
    kMirror,  // left and right exchanged
    kFlip,    // top and bottom exchanged
};

// As EXIF counts it.
constexpr uint16_t OrientationOf(Turn turn) {
    switch (turn) {
        case Turn::kRight:
            return exif::kTurnedRight;
        case Turn::kLeft:
            return exif::kTurnedLeft;
        case Turn::kHalf:
            return exif::kHalfTurned;
        case Turn::kMirror:
            return exif::kMirrored;
        case Turn::kFlip:
            return exif::kFlipped;
    }
    return exif::kUpright;
}

// A new picture of the same depth, with the same table and resolution, the top row first if
// the picture has it so. Empty without memory.
Picture TurnedPicture(const Picture& picture, Turn turn);

// The same in an orientation as EXIF counts them.
Picture TurnedPicture(const Picture& picture, uint16_t orientation);

}  // namespace tessary
