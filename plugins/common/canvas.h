// The picture that the frames of an animation are drawn on, one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "plugins/common/picture_target.h"

namespace tessary::codec {

// Where a frame stands; it may reach over the canvas's edges.
struct FramePlace {
    uint32_t left = 0;
    uint32_t top = 0;
    uint32_t width = 0;
    uint32_t height = 0;
};

// Pixels of 32 bits: blue, green, red and an alpha that they are not multiplied by.
class Canvas {
  public:
    static constexpr size_t kPixelBytes = 4;

    Canvas() = default;
    // Transparent. Throws std::bad_alloc where there is no memory.
    Canvas(uint32_t width, uint32_t height);

    uint32_t Width() const { return width_; }
    uint32_t Height() const { return height_; }
    size_t Size() const { return pixels_.size(); }
    uint8_t* Pixel(uint32_t x, uint32_t y) {
        return &pixels_[(size_t{y} * width_ + x) * kPixelBytes];
    }
    const uint8_t* Row(uint32_t y) const { return &pixels_[size_t{y} * width_ * kPixelBytes]; }

    // What of a frame's place is on the canvas.
    FramePlace Visible(const FramePlace& place) const;

    // Makes a visible place transparent; white where somebody sees the colours all the same.
    void Clear(const FramePlace& visible);
    // The pixels of a visible place, row by row, and back again.
    std::vector<uint8_t> Kept(const FramePlace& visible) const;
    void PutBack(const FramePlace& visible, std::span<const uint8_t> kept);

    // Lays pixels over those at (x, y) and right of it, all on the canvas.
    void Blend(uint32_t x, uint32_t y, std::span<const uint8_t> pixels);

    // Hands it out: with alpha where it has transparent pixels and the target takes them, else with
    // 24 bits, over white. `sourceSize` as of CreatePicture.
    Result HandOut(PictureTarget& target, uint64_t sourceSize) const;

  private:
    bool IsOpaque() const;

    uint32_t width_ = 0;
    uint32_t height_ = 0;
    std::vector<uint8_t> pixels_;
};

}  // namespace tessary::codec
