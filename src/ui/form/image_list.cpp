#include "ui/form/image_list.h"

#include <algorithm>
#include <vector>

#include "ui/form/metrics.h"

namespace tessary {
namespace {

UniqueBitmap ColorBitmap(const ArgbImage& image) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof(header);
    header.biWidth = image.size;
    header.biHeight = -image.size;  // rows from the top
    header.biPlanes = 1;
    header.biBitCount = 32;
    void* pixels = nullptr;
    UniqueBitmap bitmap(CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(&header),
                                         DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (bitmap) std::copy(image.pixels.begin(), image.pixels.end(), static_cast<uint32_t*>(pixels));
    return bitmap;
}

// Set where the picture is mostly transparent. Serves where the alpha values are ignored.
UniqueBitmap Mask(const ArgbImage& image) {
    const auto size = static_cast<size_t>(image.size);
    const size_t stride = (size + 15) / 16 * 2;
    std::vector<uint8_t> bits(stride * size);
    for (size_t i = 0; i < image.pixels.size(); ++i) {
        if (image.pixels[i] >> 24 >= 128) continue;
        const size_t column = i % size;
        bits[i / size * stride + column / 8] |= static_cast<uint8_t>(0x80 >> column % 8);
    }
    return UniqueBitmap(CreateBitmap(image.size, image.size, 1, 1, bits.data()));
}

// Icons are where every version of the controls wants alpha values not multiplied in.
UniqueIcon MakeIcon(const ArgbImage& image) {
    const UniqueBitmap color = ColorBitmap(image);
    const UniqueBitmap mask = Mask(image);
    ICONINFO icon{TRUE, 0, 0, mask.Get(), color.Get()};
    return UniqueIcon(CreateIconIndirect(&icon));
}

}  // namespace

UniqueImageList MakeImageList(std::span<const ArgbImage> images) {
    if (images.empty()) return {};
    const int size = images.front().size;
    UniqueImageList list(
        ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, static_cast<int>(images.size()), 0));
    for (const ArgbImage& image : images) {
        const UniqueIcon icon = MakeIcon(image);
        if (!icon || ImageList_ReplaceIcon(list.Get(), -1, icon.Get()) < 0) return {};
    }
    return list;
}

}  // namespace tessary
