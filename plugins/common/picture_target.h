// Where a decoder puts its picture: an info block (header and colour table) and a bits block with
// the rows of a bottom-up bitmap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "helpers/dib/bitmap_header.h"
#include "plugins/common/result.h"

namespace tessary::codec {

// Size, depth and resolution of a decoded picture.
struct PictureForm {
    uint32_t width = 0;         // pixels
    uint32_t height = 0;        // pixels
    uint16_t bitCount = 0;      // 1, 4, 8 or 24; 32: with alpha, for targets that take it
    int32_t xPelsPerMeter = 0;  // 0 when the file does not say
    int32_t yPelsPerMeter = 0;
    std::vector<uint8_t> profile{};  // ICC, for targets that take it; empty: sRGB
};

// Gives the two blocks their memory. They belong to the target and stay in place while it lives.
class PictureTarget {
  public:
    virtual ~PictureTarget() = default;

    // Allocates both blocks, filled with zeros; replaces earlier ones. False when there is no
    // memory.
    virtual bool Allocate(size_t infoSize, size_t bitsSize) = 0;
    // Whether pictures may have an alpha channel. Otherwise they are laid over a plain colour.
    virtual bool TakesAlpha() const { return false; }
    // Whether colours may come as they are stored, with their profile. Otherwise they are
    // converted to sRGB.
    virtual bool TakesProfile() const { return false; }
    // Above 0: the picture may be smaller than it is, with a longer side of so many pixels at
    // least.
    virtual uint32_t Enough() const { return 0; }
    virtual uint8_t* Info() = 0;
    virtual uint8_t* Bits() = 0;
};

// The rows of an allocated picture. Their padding is zero and stays so when only `width` pixels of
// each row are written.
struct PictureRows {
    uint8_t* bits = nullptr;
    size_t stride = 0;  // bytes from one row to the next
    uint32_t height = 0;

    // Row `y`, counted from the top of the picture.
    uint8_t* Row(uint32_t y) const { return bits + (height - 1 - y) * stride; }
};

// Whether a file of `sourceSize` bytes can hold a picture of `bitsSize` bytes: flat pictures
// compress to a thousandth of their size at best, and a file cut short still shows its part. Large
// pictures beyond that are forged headers, made to eat memory and time.
bool IsPlausibleSize(uint64_t bitsSize, uint64_t sourceSize);

// Allocates the picture and writes its header and colour table (1 << bitCount entries up to 8
// bits, missing ones black; none above, but the masks of 32 bits). A profile stands behind them,
// and the header is a BITMAPV5HEADER then. `sourceSize` is the size of the
// file; a size that is not plausible for it is refused before any memory is taken.
Result CreatePicture(PictureTarget& target, const PictureForm& form,
                     std::span<const dib::PaletteEntry> palette, uint64_t sourceSize,
                     PictureRows& rows);

}  // namespace tessary::codec
