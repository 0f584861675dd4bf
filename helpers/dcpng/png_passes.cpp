#include "helpers/dcpng/png_passes.h"

#include <algorithm>
#include <cstring>

#include "helpers/dib/bitmap_header.h"

namespace tessary::dcpng {
namespace {

struct Origin {
    uint32_t left;
    uint32_t top;
    uint32_t stepX;
    uint32_t stepY;
};

constexpr Origin kWhole{0, 0, 1, 1};
constexpr Origin kAdam7[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                             {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};

// How many of `size` places are first, first + step, …
constexpr uint32_t Places(uint32_t size, uint32_t first, uint32_t step) {
    return size <= first ? 0 : (size - first - 1) / step + 1;
}

}  // namespace

std::vector<PngPass> PassesOf(uint32_t width, uint32_t height, uint32_t bitsPerPixel,
                              bool interlace) {
    std::vector<PngPass> passes;
    for (const Origin& origin : interlace ? std::span(kAdam7) : std::span(&kWhole, 1)) {
        const uint32_t passWidth = Places(width, origin.left, origin.stepX);
        const uint32_t passHeight = Places(height, origin.top, origin.stepY);
        if (passWidth == 0 || passHeight == 0) continue;
        passes.push_back({origin.left, origin.top, origin.stepX, origin.stepY, passWidth,
                          passHeight, static_cast<size_t>(dib::RowBytes(passWidth, bitsPerPixel))});
    }
    return passes;
}

void TakePixels(const PngPass& pass, uint32_t bitsPerPixel, std::span<const uint8_t> row,
                std::span<uint8_t> out) {
    if (bitsPerPixel >= 8) {
        const size_t size = bitsPerPixel / 8;
        const uint8_t* from = row.data() + pass.left * size;
        for (uint8_t* to = out.data(); to != out.data() + pass.rowBytes; to += size) {
            std::memcpy(to, from, size);
            // Behind the last pixel the pointer stays where it is.
            if (to + size != out.data() + pass.rowBytes) from += pass.stepX * size;
        }
        return;
    }
    std::fill_n(out.begin(), pass.rowBytes, uint8_t{0});
    const uint32_t mask = (1u << bitsPerPixel) - 1;
    for (size_t i = 0; i < pass.width; ++i) {
        const size_t from = (pass.left + i * pass.stepX) * bitsPerPixel;
        const size_t to = i * bitsPerPixel;
        const uint32_t pixel = row[from / 8] >> (8 - bitsPerPixel - from % 8) & mask;
        out[to / 8] |= static_cast<uint8_t>(pixel << (8 - bitsPerPixel - to % 8));
    }
}

}  // namespace tessary::dcpng
