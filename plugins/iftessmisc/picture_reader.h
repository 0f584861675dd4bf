// What each of the small formats makes of a file: a picture whose rows can be asked for.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "helpers/color/color_profile.h"
#include "helpers/dib/bitmap_header.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"
#include "plugins/common/row_places.h"

namespace tessary::misc {

// How the pixels of a row come: a byte of an index, grey and alpha, or colours, those of 16 bits
// with their high byte first. Alpha is not multiplied into the colours.
enum class Pixels : uint8_t { kIndexed, kGreyAlpha, kBgr, kBgra, kBgr16, kBgra16 };

constexpr size_t BytesOf(Pixels pixels) {
    constexpr std::array<uint8_t, 6> kBytes{1, 2, 3, 4, 6, 8};
    return kBytes[static_cast<size_t>(pixels)];
}

// What is known of a picture before its first row.
struct Outline {
    uint32_t width = 0;  // as stored
    uint32_t height = 0;
    Pixels pixels = Pixels::kBgr;
    uint16_t tableBits = 8;                       // of indexes: 1, 4 or 8
    std::vector<dib::PaletteEntry> palette = {};  // of indexes; they lie below 1 << tableBits
    std::vector<uint8_t> paletteAlpha = {};       // of its entries; empty: all are opaque
    uint16_t orientation = codec::kUprightOrientation;
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    std::optional<color::Profile> profile = {};  // of RGB, of colours; empty: sRGB
};

// Where the rows of a picture with its first row at the bottom belong.
constexpr uint16_t kBottomUp = 4;

class PictureReader {
  public:
    PictureReader() = default;
    PictureReader(const PictureReader&) = delete;
    PictureReader& operator=(const PictureReader&) = delete;
    virtual ~PictureReader() = default;

    // What a look through the file tells of how to show it. Called once, before the first row.
    // False when the host asks to stop.
    virtual bool Prepare(codec::Progress&) { return true; }

    // Reads the stored row `y`; rows are asked for in their order. Returns how many of its pixels
    // there are, from the left: fewer than the width ends the picture.
    virtual uint32_t ReadRow(uint32_t y, uint8_t* row) = 0;

    const Outline& Form() const { return outline_; }
    // Whether anything of the rows so far made no sense.
    bool IsDamaged() const { return isDamaged_; }

  protected:
    Outline outline_;
    bool isDamaged_ = false;
};

}  // namespace tessary::misc
