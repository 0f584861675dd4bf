// Resizing a picture of any depth to 24 bits, or to 32 with alpha.
#pragma once

#include <cstdint>
#include <span>

#include "helpers/dib/dib_view.h"
#include "helpers/dib/unpack_row.h"
#include "helpers/kernel/instructions.h"
#include "helpers/kernel/resize_filter.h"

namespace tessary::kernel {

// A part of a picture, in its pixels.
struct Part {
    int32_t left;
    int32_t top;
    int32_t width;
    int32_t height;
};

// How many bits a pixel of the resized picture has: 32 where alpha is kept.
uint16_t ResizedBits(const dib::DibView& source, Light light);

// Resizes `source` to width x height pixels (both above 0), of which `part` is written to `rows`
// as pixels of ResizedBits, bottom row first, each row padded with zeros to 4 bytes: RowStride(
// part.width, bits) x part.height bytes. Only what the part is mixed of is read.
//
// The colour values are mixed as they are stored, or as the light that they stand for (Light). Rows
// are mixed first, then pixels, in one pass over the source on as many threads as the machine has
// cores; beside `rows` only a few source rows are held in memory. The fourth byte of 32-bit pixels
// is ignored unless it is alpha: those are laid over the backdrop, or keep their alpha, and colours
// count by it. Throws std::bad_alloc or std::length_error when memory runs out.
void Resize(const dib::DibView& source, int32_t width, int32_t height, const Part& part,
            ResizeFilter filter, std::span<uint8_t> rows,
            Instructions instructions = BestInstructions(),
            dib::Backdrop backdrop = dib::Backdrop::kWhite, Light light = Light::kStored);

}  // namespace tessary::kernel
