// Decoding of the small and old formats, each by code of our own.
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::misc {

// A picture that is cut short or damaged is told so, with the pixels that there are; one without
// any is broken. Pictures with a table keep it where nothing is transparent, greys stay greys.
class MiscDecoder final : public codec::PictureCodec {
  public:
    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
    std::unique_ptr<codec::FrameReader> OpenFrames(dib::ByteSource& source) const override;
};

}  // namespace tessary::misc
