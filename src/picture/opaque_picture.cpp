#include "picture/opaque_picture.h"

#include <cstring>
#include <optional>

#include "helpers/dib/unpack_row.h"

namespace tessary {

OwnedPicture OpaquePicture(const PicturePair& picture) {
    const BlockLock infoLock(picture.info);
    const BlockLock bitsLock(picture.bits);
    const std::optional<dib::DibView> view = dib::DibView::Of(infoLock.Bytes(), bitsLock.Bytes());
    if (!view || view->Format() != dib::PixelFormat::kBgra32) return {};
    const auto stride =
        static_cast<size_t>(dib::RowStride(static_cast<uint64_t>(view->Width()), 24));
    const size_t bytes = stride * static_cast<size_t>(view->Height());

    dib::BitmapInfoHeader header = view->Header();
    header.height = view->Height();
    header.bitCount = 24;
    header.compression = dib::kCompressionRgb;
    header.sizeImage = static_cast<uint32_t>(bytes);
    OwnedBlock info = FilledBlock(sizeof(header), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), &header, sizeof(header));
    });
    const dib::RowReader reader(*view);
    OwnedBlock bits = FilledBlock(bytes, [&](std::span<uint8_t> target) {
        for (int32_t y = view->Height() - 1; y >= 0; --y) {
            std::memset(target.data() + stride - 4, 0, 4);  // what is padding afterwards
            reader.Row(view->Row(y), target.first(stride));
            target = target.subspan(stride);
        }
    });
    if (!info || !bits) return {};
    return OwnedPicture({info.Release(), bits.Release()});
}

}  // namespace tessary
