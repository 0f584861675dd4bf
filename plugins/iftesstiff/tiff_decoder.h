// TIFF decoding on libtiff: all kinds of samples and compressions, pages, BigTIFF.
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::tiff {

// The first page is the picture; the others are its frames. Pages with a table of colours, and
// greys, keep their table. Strips and tiles that cannot be read are told as damage and are black; a
// picture without any is broken.
class TiffDecoder final : public codec::PictureCodec {
  public:
    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
    std::unique_ptr<codec::FrameReader> OpenFrames(dib::ByteSource& source) const override;
};

}  // namespace tessary::tiff
