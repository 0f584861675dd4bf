// What the user waits for while he zooms, drags and resizes the window.
#pragma once

#include "picture/picture.h"

namespace tessary::bench {

// Prints how long each takes for the picture in a view of 2560 × 1440, without the way to the
// screen.
void BenchSight(Picture picture);

}  // namespace tessary::bench
