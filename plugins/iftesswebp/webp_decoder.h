// WebP decoding on libwebp.
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::webp {

// Lossy and lossless pictures; of an animation the first frame is the picture, on the whole canvas.
// Alpha is handed out or laid over white, colours are converted by the file's profile, and EXIF
// turns it. A picture that is cut short or damaged is told so, with the rows that there are; one
// without any is broken.
class WebpDecoder final : public codec::PictureCodec {
  public:
    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
    std::unique_ptr<codec::FrameReader> OpenFrames(dib::ByteSource& source) const override;
};

}  // namespace tessary::webp
