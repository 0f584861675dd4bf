// Picture files for the tests.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tessary::codec::test {

enum class JpegKind { kColor, kGrey, kAdobeInk, kPlainInk };

// A chequerboard of 5 x 3 flat tiles, so that every pixel comes back nearly as it was.
struct JpegPlan {
    JpegKind kind = JpegKind::kColor;
    bool progressive = false;
    uint16_t orientation = 1;  // EXIF entry
    uint16_t dotsPerInch = 0;  // JFIF density across, twice as much down, when not 0
};

constexpr uint32_t kTile = 40;  // pixels, a multiple of 8
constexpr uint32_t kJpegWidth = 5 * kTile, kJpegHeight = 3 * kTile;

// One channel (0 blue, 1 green, 2 red) of a pixel of the stored picture.
int JpegChannel(JpegKind kind, uint32_t x, uint32_t y, unsigned channel);
std::vector<uint8_t> MakeJpeg(const JpegPlan& plan);

// A picture of noise.
struct PngPlan {
    uint32_t width = 21;
    uint32_t height = 19;
    int colorType = 2;
    int depth = 8;
    bool interlaced = false;
    bool transparent = false;              // tRNS: palette alphas, or one clear colour
    std::optional<uint16_t> background{};  // bKGD: all of its samples, or the index
};

// Red, green and blue of entry `index` of every palette.
constexpr uint8_t PngPaletteLevel(unsigned index) {
    return static_cast<uint8_t>(index * 37 + 20);
}
std::vector<uint8_t> MakePng(const PngPlan& plan);

// Two frames of 12 x 10 pixels in diagonal stripes of these colours, the second one shifted.
constexpr uint32_t kGifColors[4] = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};
constexpr uint32_t kGifWidth = 12, kGifHeight = 10;
constexpr unsigned GifIndex(uint32_t x, uint32_t y) {
    return (x + y) % 4;
}
std::vector<uint8_t> MakeGif();

// Where the GIF's numbers stand that a test may change.
constexpr size_t kGifScreen = 6, kGifHasClear = 28, kGifClearIndex = 31, kGifFrame = 34;
constexpr size_t kGifFirstPixels = 43;

}  // namespace tessary::codec::test
