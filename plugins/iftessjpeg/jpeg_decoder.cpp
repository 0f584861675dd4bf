#include "plugins/iftessjpeg/jpeg_decoder.h"

#include "plugins/common/palette.h"
#include "plugins/iftessjpeg/jpeg_reader.h"

namespace tessary::jpeg {

using codec::Result;

bool JpegDecoder::IsSupported(std::span<const uint8_t> header) const {
    return header.size() >= 3 && header[0] == 0xFF && header[1] == 0xD8 && header[2] == 0xFF;
}

Result JpegDecoder::ReadForm(dib::ByteSource& source, codec::PictureForm& form) const {
    codec::Progress nobody;
    JpegReader reader(source, nobody);
    const Result result = reader.ReadHeader();
    if (result == Result::kSuccess) form = reader.Form();
    return result;
}

Result JpegDecoder::Decode(dib::ByteSource& source, codec::PictureTarget& target,
                           codec::Progress& progress) const {
    if (!progress.Report(0, 1)) return Result::kAborted;
    JpegReader reader(source, progress);
    if (const Result result = reader.ReadHeader(); result != Result::kSuccess) return result;
    const codec::PictureForm form = reader.Form();
    codec::PictureRows rows;
    const Result created =
        CreatePicture(target, form, codec::GreyPalette(form.bitCount), source.Size(), rows);
    if (created != Result::kSuccess) return created;
    codec::OrientedRows oriented(rows, reader.StoredWidth(), reader.StoredHeight(),
                                 form.bitCount / 8u, reader.Orientation());
    return reader.DecodeRows(oriented);
}

}  // namespace tessary::jpeg
