// A picture in the pixels of a PNG file.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "helpers/dcpng/alpha_table.h"
#include "helpers/dib/unpack_row.h"
#include "helpers/saving/trimmed_palette.h"

namespace tessary::dcpng {

// How a PNG file stores the pixels (its colour types).
enum class PngKind { kGrey, kPalette, kRgb, kRgba };

// Decides how a picture is stored without loss, and makes the rows. Rows are independent of each
// other: several threads may make them at once.
//
// Depths with a colour table keep their depth. They become grey when all colours of the trimmed
// table are grey levels that the depth can hold (of 1 bit: 0 and 255; of 4 bits: multiples of 17),
// else they keep their table. 16 and 24 bits become RGB. 32 bits become RGBA when their fourth
// bytes are declared to be alpha, or indexes of 1, 4 or 8 bits where they have no more colours than
// a table, else RGB: what else stands there is junk as often as not.
class PngRows {
  public:
    // `picture` must outlive the object.
    explicit PngRows(const dib::DibView& picture);

    PngKind Kind() const { return kind_; }
    int BitDepth() const { return bitDepth_; }  // bits per channel or index
    uint32_t BitsPerPixel() const { return bitsPerPixel_; }
    size_t RowBytes() const { return rowBytes_; }
    // The colour table of kPalette.
    std::span<const dib::PaletteEntry> Palette() const { return palette_.Entries(); }
    // The alpha of its first entries; the others are opaque.
    std::vector<uint8_t> Alphas() const;

    // Writes row y, counted from the top, to the first RowBytes() bytes of `out`.
    void Pack(int32_t y, std::span<uint8_t> out) const;

  private:
    // Fills greyBytes_; false when the levels do not fit into the depth.
    bool MapToGrey();
    void PackIndexes(std::span<const uint8_t> row, std::span<uint8_t> out) const;
    void TakeTable();
    void PackColors(std::span<const uint8_t> row, std::span<uint8_t> out) const;

    const dib::DibView& picture_;
    dib::RowReader reader_;
    saving::TrimmedPalette palette_;
    std::optional<AlphaTable> table_{};  // of a picture with alpha
    PngKind kind_ = PngKind::kRgb;
    int bitDepth_ = 8;
    uint32_t bitsPerPixel_ = 0;
    size_t rowBytes_ = 0;
    // Of kGrey: the levels of all pixels of a byte with indexes.
    std::array<uint8_t, 256> greyBytes_{};
};

}  // namespace tessary::dcpng
