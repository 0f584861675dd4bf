// Small pictures to show.
#pragma once

#include <cstring>

#include "app/base/handles.h"
#include "picture/modDIBToPicture.h"
#include "picture/modMemory.h"
#include "ui/form/picture_box.h"

namespace tessary::test {

// A 24-bit pair whose pixels tell their column and row (red = x, green = y, blue = 128); up to
// 256 × 256 pixels are all different.
inline PicturePair MakePair(int width, int height) {
    const size_t stride = (static_cast<size_t>(width) * 3 + 3) / 4 * 4;
    const PicturePair pair{LocalAlloc(LHND, sizeof(dib::BitmapInfoHeader)),
                           LocalAlloc(LHND, stride * height)};
    const BlockLock info(pair.info);
    const BlockLock bits(pair.bits);
    dib::BitmapInfoHeader header{};
    header.size = sizeof(header);
    header.width = width;
    header.height = height;
    header.planes = 1;
    header.bitCount = 24;
    std::memcpy(info.Address(), &header, sizeof(header));
    for (int y = 0; y < height; ++y) {
        auto* pixel = static_cast<uint8_t*>(bits.Address()) + stride * (height - 1 - y);
        for (int x = 0; x < width; ++x, pixel += 3) {
            pixel[0] = 128;
            pixel[1] = static_cast<uint8_t>(y);
            pixel[2] = static_cast<uint8_t>(x);
        }
    }
    return pair;
}

inline COLORREF PixelAt(int x, int y) {
    return RGB(x & 0xFF, y & 0xFF, 128);
}

// The picture object of such a pair.
inline PictureReference MakePicture(int width, int height) {
    const OwnedPicture pair(MakePair(width, height));
    const BlockLock info(pair.Get().info);
    const BlockLock bits(pair.Get().bits);
    const UniqueScreenDc screen(GetDC(nullptr));
    PictureReference picture;
    DIBToPicture(screen.Get(), {info.Address(), bits.Address()}, picture.Receive());
    return picture;
}

}  // namespace tessary::test
