#include "picture/opaque_picture.h"

#include <cstring>

#include "helpers/dib/unpack_row.h"

namespace tessary {

Picture OpaquePicture(const dib::DibView& picture, dib::Backdrop backdrop) {
    if (picture.Format() != dib::PixelFormat::kBgra32) return {};
    dib::BitmapInfoHeader header = picture.Header();
    header.height = picture.Height();
    header.bitCount = 24;
    header.compression = dib::kCompressionRgb;
    header.sizeImage = static_cast<uint32_t>(dib::BitsBlockSize(header));
    const size_t stride = header.sizeImage / static_cast<size_t>(picture.Height());
    const dib::RowReader reader(picture, backdrop);
    return Picture::Make(dib::BytesOf(header), [&](std::span<uint8_t> rows) {
        for (int32_t y = picture.Height() - 1; y >= 0; --y) {
            std::memset(rows.data() + stride - 4, 0, 4);  // what is padding afterwards
            reader.Row(picture.Row(y), rows.first(stride));
            rows = rows.subspan(stride);
        }
        return true;
    });
}

}  // namespace tessary
