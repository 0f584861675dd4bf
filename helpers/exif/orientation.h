// The orientations of EXIF: how a stored picture is to be turned and mirrored to be seen. 1 is none
// of it, 2 to 8 are the numbers of EXIF 2.3, 4.6.4.
#pragma once

#include <cstdint>

namespace tessary::exif {

inline constexpr uint16_t kUpright = 1;
inline constexpr uint16_t kMirrored = 2;
inline constexpr uint16_t kHalfTurned = 3;
inline constexpr uint16_t kFlipped = 4;
inline constexpr uint16_t kTransposed = 5;
inline constexpr uint16_t kTurnedRight = 6;
inline constexpr uint16_t kTransverse = 7;
inline constexpr uint16_t kTurnedLeft = 8;

constexpr bool IsOrientation(uint32_t value) {
    return value >= kUpright && value <= kTurnedLeft;
}

// Whether width and height are exchanged.
constexpr bool SwapsSides(uint16_t orientation) {
    return orientation >= kTransposed;
}

// The one that has the effect of both, one after the other.
constexpr uint16_t Composed(uint16_t first, uint16_t then) {
    // Each is a mirroring, or none, and quarters of a turn to the right behind it.
    struct Steps {
        bool isMirrored;
        int quarters;
    };
    constexpr Steps kSteps[] = {{false, 0}, {true, 0},  {false, 2}, {true, 2},
                                {true, 3},  {false, 1}, {true, 1},  {false, 3}};
    const Steps one = kSteps[first - 1], other = kSteps[then - 1];
    const bool isMirrored = one.isMirrored != other.isMirrored;
    const int quarters =
        (other.isMirrored ? other.quarters - one.quarters + 4 : other.quarters + one.quarters) % 4;
    for (uint16_t i = 0; i < kTurnedLeft; ++i) {
        if (kSteps[i].isMirrored == isMirrored && kSteps[i].quarters == quarters) {
            return static_cast<uint16_t>(i + 1);
        }
    }
    return kUpright;
}

}  // namespace tessary::exif
