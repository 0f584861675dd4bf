// Small pictures to show.
#pragma once

#include "picture/picture.h"

namespace tessary::test {

// A 24-bit picture, bottom row first; `fill` writes its rows.
template <typename Fill>
Picture PictureOf(int width, int height, Fill fill) {
    const dib::BitmapInfoHeader header{40, width, height, 1, 24, 0, 0, 0, 0, 0, 0};
    return Picture::Make(dib::BytesOf(header), [&](std::span<uint8_t> rows) {
        fill(rows);
        return true;
    });
}

// One whose pixels tell their column and row (red = x, green = y, blue = 128); up to 256 × 256
// pixels are all different.
inline Picture TestPicture(int width, int height) {
    return PictureOf(width, height, [&](std::span<uint8_t> rows) {
        const size_t stride = rows.size() / static_cast<size_t>(height);
        for (int y = 0; y < height; ++y) {
            uint8_t* pixel = rows.data() + stride * static_cast<size_t>(height - 1 - y);
            for (int x = 0; x < width; ++x, pixel += 3) {
                pixel[0] = 128;
                pixel[1] = static_cast<uint8_t>(y);
                pixel[2] = static_cast<uint8_t>(x);
            }
        }
    });
}

inline COLORREF PixelAt(int x, int y) {
    return RGB(x & 0xFF, y & 0xFF, 128);
}

}  // namespace tessary::test
