// PNG decoding on libpng. Palette and grey pictures of up to 8 bits keep their depth (2 bits become
// 4), deeper grey ones become 8-bit, all others 24-bit.
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::png {

// Transparency is laid over the file's background colour (bKGD), else over white. Of an animation
// the default picture is shown. A file that is cut short, or whose data make no sense from some
// place on, gives the rows before, the rest in the background colour, and is told as damaged unless
// it lacks only what follows the last row. One whose data have a wrong check sum is told so, too.
// What has no row, or a wrong header or colour table, is broken. Damage of an animation's other
// frames is told as well.
//
// Gives sRGB: what iCCP, or gAMA with cHRM, says of the samples is converted. 16-bit samples of
// pictures in sRGB show their high byte. An orientation in eXIf, or in EXIF data that are
// text, turns the picture upright.
class PngDecoder final : public codec::PictureCodec {
  public:
    // What counts as a large picture, whose data a second thread unpacks: bytes of its pixels.
    static constexpr uint64_t kLarge = 1u << 20;

    explicit PngDecoder(uint64_t large = kLarge) : large_(large) {}

    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
    std::unique_ptr<codec::FrameReader> OpenFrames(dib::ByteSource& source) const override;

  private:
    uint64_t large_;
};

}  // namespace tessary::png
