// One form for all pixels: unpacks rows of any plain picture to 24-bit or 32-bit pixels.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "helpers/dib/backdrop.h"
#include "helpers/dib/dib_view.h"

namespace tessary::dib {

// Made once per picture, used for each of its rows; independent of the pair's blocks once made.
// Palette indexes beyond the colour table give black; 5- and 6-bit channels are widened by
// repeating their top bits, as GDI does.
class RowReader {
  public:
    explicit RowReader(const DibView& view, Backdrop backdrop = Backdrop::kWhite);

    // Whether pixels differ in alpha: the picture has one, and is not transparent all over.
    bool HasAlpha() const { return format_ == PixelFormat::kBgra32 && !allTransparent_; }

    // Unpacks to blue, green, red bytes; pixels with alpha are laid over the backdrop, unless the
    // whole picture is transparent: then its colours are all that there is to see. `row` is one row
    // of the picture (DibView::Row), `bgr` takes at least width x 3 bytes; what is behind them is
    // left alone.
    void Row(std::span<const uint8_t> row, std::span<uint8_t> bgr) const;

    // Unpacks to blue, green, red, alpha bytes: `bgra` takes at least width x 4 bytes. The fourth
    // byte is the stored one for 32-bit pictures (alpha or anything), 255 for all others.
    void RowBgra(std::span<const uint8_t> row, std::span<uint8_t> bgra) const;

    // Unpacks the pixels of these columns alone, with blue in the lowest byte and alpha in the
    // highest, which the others are multiplied by: as many as there are columns, all of them inside
    // the row. 255 for pictures without alpha.
    void Pick(std::span<const uint8_t> row, std::span<const int32_t> columns,
              uint32_t* pixels) const;
    // The same of `count` neighbouring columns, which is far quicker where pixels are bytes.
    void PickRun(std::span<const uint8_t> row, size_t first, size_t count, uint32_t* pixels) const;

    // How many bytes of a row a pixel takes whose colour lies in them as Pick gives it; 0 where
    // more is to be done than to put 255 for alpha.
    size_t PlainBytes() const;

  private:
    template <int kBytes>
    void Unpack(std::span<const uint8_t> row, std::span<uint8_t> out) const;

    PixelFormat format_;
    size_t width_;
    Backdrop backdrop_;
    bool allTransparent_ = false;
    // The colour, as blue, green, red, alpha from the lowest byte up: of each palette index; for 16
    // bits the part of it that comes from the pixel's low byte, and in high_ from its high byte.
    std::array<uint32_t, 256> low_{};
    std::array<uint32_t, 256> high_{};
};

}  // namespace tessary::dib
