// How large a picture is shown.
#pragma once

#include <windows.h>

#include <cstdint>

namespace tessary {

// The box that a display size mode fits pictures into: 640 × 480, 800 × 600, 1024 × 768 or the work
// area. Empty (0 × 0) for mode 0 and for modes that do not exist: pictures keep their size.
SIZE SizeModeBox(int16_t sizeMode, SIZE workArea);

// The largest size of the picture's proportions inside the box, at least 1 × 1; the picture's own
// size for an empty box. Small pictures are enlarged.
SIZE FitIntoBox(SIZE picture, SIZE box);

}  // namespace tessary
