// Decoding of everything that the Windows Imaging Component of this machine reads, save the formats
// that plug-ins of their own decode (JPEG, PNG, bitmaps).
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::wic {

// Shows the first picture (of icons the largest, the deepest of equal ones), TIFF upright. Palette
// and grey pictures of up to 8 bits stay such, all others become 24-bit, or 32-bit where they are
// transparent and the target takes alpha, but for TIFF; else transparency is laid over white. Pages
// are those of TIFF files, and the sizes of icons and cursors, the best first.
class WicDecoder final : public codec::PictureCodec {
  public:
    // Formats that not every Windows decodes are supported when a decoder is installed.
    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
    std::unique_ptr<codec::FrameReader> OpenFrames(dib::ByteSource& source) const override;
};

}  // namespace tessary::wic
