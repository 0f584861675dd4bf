// GIF decoding on giflib. A picture without transparency keeps its colour table.
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::gif {

// Of an animation the first frame is the picture, on the whole screen. What is transparent, or
// outside of the frame, is handed out as alpha, or laid over white. A frame that is cut short, or
// whose data make no sense from some place on, is told as damaged; missing pixels have colour 0
// where the picture has a table. One without any pixel is broken. A file that ends in a later frame
// is told as damaged, too.
class GifDecoder final : public codec::PictureCodec {
  public:
    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
    std::unique_ptr<codec::FrameReader> OpenFrames(dib::ByteSource& source) const override;
};

}  // namespace tessary::gif
