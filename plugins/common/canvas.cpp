#include "plugins/common/canvas.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "plugins/common/flatten_rows.h"
#include "plugins/common/palette.h"

namespace tessary::codec {
namespace {

// Opaque pixels without their alpha, four at once: this is done for every frame that is played.
void PackRow(const uint8_t* in, uint8_t* out, size_t pixels) {
    size_t x = 0;
    for (; x + 4 <= pixels; x += 4, in += 16, out += 12) {
        uint32_t four[4];
        std::memcpy(four, in, sizeof four);
        const uint32_t packed[3] = {(four[0] & 0xFFFFFF) | four[1] << 24,
                                    (four[1] >> 8 & 0xFFFF) | four[2] << 16,
                                    (four[2] >> 16 & 0xFF) | four[3] << 8};
        std::memcpy(out, packed, sizeof packed);
    }
    for (; x < pixels; ++x, in += 4, out += 3)
        std::memcpy(out, in, 3);
}

}  // namespace

Canvas::Canvas(uint32_t width, uint32_t height)
    : width_(width), height_(height), pixels_(size_t{width} * height * kPixelBytes) {
    Clear({0, 0, width, height});
}

FramePlace Canvas::Visible(const FramePlace& place) const {
    const uint32_t left = std::min(place.left, width_);
    const uint32_t top = std::min(place.top, height_);
    return {left, top, std::min(place.width, width_ - left), std::min(place.height, height_ - top)};
}

void Canvas::Clear(const FramePlace& visible) {
    if (visible.width == 0) return;
    constexpr std::array<uint8_t, kPixelBytes> kClear{0xFF, 0xFF, 0xFF, 0};
    for (uint32_t y = 0; y < visible.height; ++y) {
        uint8_t* pixel = Pixel(visible.left, visible.top + y);
        for (uint32_t x = 0; x < visible.width; ++x, pixel += kPixelBytes)
            std::memcpy(pixel, kClear.data(), kPixelBytes);
    }
}

std::vector<uint8_t> Canvas::Kept(const FramePlace& visible) const {
    std::vector<uint8_t> kept;
    kept.reserve(size_t{visible.width} * visible.height * kPixelBytes);
    for (uint32_t y = 0; y < visible.height && visible.width != 0; ++y) {
        const uint8_t* const row = Row(visible.top + y) + size_t{visible.left} * kPixelBytes;
        kept.insert(kept.end(), row, row + size_t{visible.width} * kPixelBytes);
    }
    return kept;
}

void Canvas::PutBack(const FramePlace& visible, std::span<const uint8_t> kept) {
    const size_t rowBytes = size_t{visible.width} * kPixelBytes;
    if (rowBytes == 0) return;
    for (uint32_t y = 0; y < visible.height; ++y)
        std::memcpy(Pixel(visible.left, visible.top + y), &kept[y * rowBytes], rowBytes);
}

void Canvas::Blend(uint32_t x, uint32_t y, std::span<const uint8_t> pixels) {
    if (pixels.empty()) return;
    uint8_t* out = Pixel(x, y);
    for (size_t at = 0; at < pixels.size(); at += kPixelBytes, out += kPixelBytes) {
        const uint8_t* const in = &pixels[at];
        const uint32_t alpha = in[3];
        if (alpha == 0) continue;
        const uint32_t under = out[3] * (255 - alpha);
        if (under == 0) {
            std::memcpy(out, in, kPixelBytes);
            continue;
        }
        // All in 255ths of 255ths.
        const uint32_t sum = alpha * 255 + under;
        for (unsigned i = 0; i < 3; ++i)
            out[i] = static_cast<uint8_t>((in[i] * alpha * 255 + out[i] * under + sum / 2) / sum);
        out[3] = static_cast<uint8_t>((sum + 127) / 255);
    }
}

bool Canvas::IsOpaque() const {
    for (uint32_t y = 0; y < height_; ++y) {
        const uint8_t* const row = Row(y);
        uint8_t all = 0xFF;
        for (size_t x = 0; x < width_; ++x)
            all &= row[x * kPixelBytes + 3];
        if (all != 0xFF) return false;
    }
    return true;
}

Result Canvas::HandOut(PictureTarget& target, uint64_t sourceSize) const {
    PictureForm form{.width = width_, .height = height_};
    const bool isOpaque = IsOpaque();
    form.bitCount = target.TakesAlpha() && !isOpaque ? 32 : 24;
    PictureRows rows;
    const Result created = CreatePicture(target, form, {}, sourceSize, rows);
    if (created != Result::kSuccess) return created;
    for (uint32_t y = 0; y < height_; ++y) {
        if (form.bitCount == 32) {
            std::memcpy(rows.Row(y), Row(y), size_t{width_} * kPixelBytes);
        } else if (isOpaque) {
            PackRow(Row(y), rows.Row(y), width_);
        } else {
            FlattenColorRow(Row(y), rows.Row(y), width_, kWhite);
        }
    }
    return Result::kSuccess;
}

}  // namespace tessary::codec
