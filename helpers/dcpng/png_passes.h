// The order in which a PNG file stores the pixels of a picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessary::dcpng {

// One pass over the picture: the pixels of every stepX-th column in every stepY-th row.
struct PngPass {
    uint32_t left;
    uint32_t top;
    uint32_t stepX;
    uint32_t stepY;
    uint32_t width;  // pixels that the pass takes of a row
    uint32_t height;
    size_t rowBytes;
};

// The passes that have any pixels: one, or those of the Adam7 interlace (ISO/IEC 15948, clause 8).
std::vector<PngPass> PassesOf(uint32_t width, uint32_t height, uint32_t bitsPerPixel,
                              bool interlace);

// Takes the pixels of a pass out of a packed row of the picture, leftmost pixel in the highest
// bits. Writes the pass's rowBytes to `out`; spare bits at their end are 0.
void TakePixels(const PngPass& pass, uint32_t bitsPerPixel, std::span<const uint8_t> row,
                std::span<uint8_t> out);

}  // namespace tessary::dcpng
