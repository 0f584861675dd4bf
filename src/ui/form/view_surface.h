// Pixels in memory that come onto the screen in one go.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>

#include "app/base/handles.h"

namespace tessary {

// Grows when it has to and stays as large as it was: what is drawn in it every moment lies in warm
// memory.
class ViewSurface {
  public:
    // Makes it at least that large; false without memory. What was drawn is lost when it grows.
    bool Provide(SIZE size);
    void Free();

    // The pixels of the row y: blue in the lowest byte, then green, red and one without meaning.
    uint32_t* Row(int y) const {
        return pixels_ + static_cast<size_t>(y) * static_cast<size_t>(size_.cx);
    }
    size_t Stride() const { return static_cast<size_t>(size_.cx); }

    // Brings a part of it to the same place of a device context.
    void Show(HDC screen, const RECT& part) const;

  private:
    UniqueBitmap bitmap_;
    SIZE size_{};
    uint32_t* pixels_ = nullptr;
};

}  // namespace tessary
