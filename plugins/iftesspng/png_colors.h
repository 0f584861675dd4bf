// What a PNG file says of its colours, and their way to sRGB.
#pragma once

#include <png.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "plugins/common/row_team.h"
#include "plugins/common/srgb.h"

namespace tessary::png {

// How the pixels lie that libpng decodes, apart from indexes into a table: colours as blue, green,
// red; 16-bit samples with their high byte first.
struct Samples {
    bool areColors = false;  // else there is one of grey
    bool areDeep = false;    // 16 bits
    bool haveAlpha = false;  // behind them

    unsigned PixelBytes() const {
        return ((areColors ? 3u : 1u) + (haveAlpha ? 1u : 0u)) * (areDeep ? 2u : 1u);
    }
    // One of this colour, opaque.
    std::vector<uint8_t> Pixel(dib::PaletteEntry color) const;
};

// Of several things that a file says the first one counts, as the PNG document (3rd edition, 4.3)
// orders them: cICP, iCCP, sRGB, gAMA with cHRM. What is damaged, or of a kind for moving pictures
// and brighter screens, counts as not there.
class PngColors {
  public:
    // Nothing is converted before Read.
    PngColors() = default;

    // To be called before libpng reads: what it would not keep by itself.
    static void KeepChunks(png_structp png);

    // To be called when libpng has read what stands before the picture data. `isGrey` is the file,
    // and `stored` is what libpng is to decode if colours are converted.
    void Read(png_structp png, png_infop info, bool isGrey, const Samples& stored);

    const Samples& Stored() const { return stored_; }

    // Whether there is anything to convert.
    bool AreForeign() const { return transform_ != nullptr || levels_ != nullptr; }

    // The profile to hand on to the target with pixels of three bytes, which stay as they are
    // stored then: what is laid over another colour has to be converted before. Empty where they
    // are to be converted, or need not be.
    std::vector<uint8_t> HandOnProfile(const codec::PictureTarget& target);

    // Converts the colours of a table, or of a background, in their places.
    void Convert(std::span<dib::PaletteEntry> colors) const;

    // The conversion of rows of `width` pixels of `stored`. Where those have an alpha channel they
    // become 32-bit pixels if it is to be kept, else they are laid over `background`, which is in
    // sRGB already.
    codec::RowConversion ForRows(uint32_t width, bool keepsAlpha,
                                 dib::PaletteEntry background) const;

  private:
    uint8_t LevelOf(const uint8_t* sample) const;
    codec::RowConversion ForGreys(uint32_t width, bool keepsAlpha,
                                  dib::PaletteEntry background) const;

    Samples stored_;
    std::optional<color::Profile> profile_;
    std::shared_ptr<const color::Transform> transform_;       // of the pixels of a colour picture
    std::shared_ptr<const color::Transform> tableTransform_;  // of its table or background
    std::shared_ptr<const std::vector<uint8_t>> levels_;      // of the samples of a grey picture
};

}  // namespace tessary::png
