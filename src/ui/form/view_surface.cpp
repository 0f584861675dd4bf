#include "ui/form/view_surface.h"

#include <algorithm>

namespace tessary {

bool ViewSurface::Provide(SIZE size) {
    if (pixels_ != nullptr && size.cx <= size_.cx && size.cy <= size_.cy) return true;
    const SIZE wanted{std::max({size.cx, size_.cx, 1L}), std::max({size.cy, size_.cy, 1L})};
    Free();
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = wanted.cx;
    info.bmiHeader.biHeight = -wanted.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pixels = nullptr;
    bitmap_.Reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (!bitmap_) return false;
    pixels_ = static_cast<uint32_t*>(pixels);
    size_ = wanted;
    return true;
}

void ViewSurface::Free() {
    bitmap_.Reset(nullptr);
    pixels_ = nullptr;
    size_ = {};
}

void ViewSurface::Show(HDC screen, const RECT& part) const {
    if (pixels_ == nullptr) return;
    const UniqueMemoryDc memory(CreateCompatibleDC(screen));
    const HGDIOBJ selected = SelectObject(memory.Get(), bitmap_.Get());
    BitBlt(screen, part.left, part.top, part.right - part.left, part.bottom - part.top,
           memory.Get(), part.left, part.top, SRCCOPY);
    SelectObject(memory.Get(), selected);
}

}  // namespace tessary
