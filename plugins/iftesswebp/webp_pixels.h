// The pixels of one WebP picture, decoded by libwebp.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include "plugins/common/progress.h"
#include "plugins/common/result.h"

namespace tessary::webp {

// Where they go to.
struct PixelPlace {
    uint8_t* first = nullptr;  // the first pixel of the top row
    ptrdiff_t stride = 0;      // bytes to the row below; rows of bottom-up bitmaps go up in memory
    bool haveAlpha = false;    // blue, green, red and alpha, which is not multiplied into them;
                               // else three bytes
    uint32_t width = 0;        // of the picture
    uint32_t height = 0;
};

// Decodes a picture: a file without frames, or a frame's data. Of one that is cut short or damaged
// it decodes what there is, and kBrokenData is the answer; `rows` is how many there are.
codec::Result DecodePixels(std::span<const uint8_t> picture, const PixelPlace& place,
                           codec::Progress& progress, uint32_t& rows);

}  // namespace tessary::webp
