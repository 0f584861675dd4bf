// JPEG decoding on libjpeg-turbo: every variant that it reads (baseline, progressive, arithmetic,
// 8 bits per sample). Grey pictures become 8-bit pictures with a grey table, all others 24-bit.
#pragma once

#include "plugins/common/picture_codec.h"

namespace tessary::jpeg {

// Gives sRGB: what an ICC profile says of the samples, or EXIF of Adobe RGB, is converted. Turns
// the picture upright as its EXIF orientation says. A file that is cut short or damaged in its
// picture data gives what could be decoded, the rest grey.
class JpegDecoder final : public codec::PictureCodec {
  public:
    bool IsSupported(std::span<const uint8_t> header) const override;
    codec::Result ReadForm(dib::ByteSource& source, codec::PictureForm& form) const override;
    codec::Result Decode(dib::ByteSource& source, codec::PictureTarget& target,
                         codec::Progress& progress) const override;
};

}  // namespace tessary::jpeg
