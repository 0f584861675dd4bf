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

// An icon (type 1) or cursor (2) of pictures of 16, 32 and 24 pixels in red, half transparent
// 0x204060 and green.
std::vector<uint8_t> MakeIcon(uint32_t type);

// Where the header of a picture stands, and its height in it.
constexpr size_t kIconEntry = 6, kIconEntrySize = 16, kIconOffset = 12, kIconHeight = 8;

// A grey picture of one uncompressed strip of 4 bytes.
std::vector<uint8_t> MakeTiff(uint32_t width, uint32_t height, uint32_t bits, uint32_t photometric,
                              uint32_t orientation, uint32_t strip);

// Where the first of its ten entries stands, and the link behind the last. They are: 0 width, 1
// height, 2 bits, 5 strip offsets, 6 orientation, 8 rows of a strip, 9 sizes of the strips.
constexpr size_t kTiffEntries = 14, kTiffEntrySize = 12, kTiffLink = 134;

// A red square of `side` pixels, a multiple of 4, in blocks of 8 bytes. `format` is a DXGI number,
// or 0 for the kind that is called `name`.
std::vector<uint8_t> MakeDds(uint32_t side, const char* name, uint32_t format);

}  // namespace tessary::codec::test
