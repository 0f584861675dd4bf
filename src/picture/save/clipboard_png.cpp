#include "picture/save/clipboard_png.h"

#include <cstring>

#include "app/base/error.h"
#include "picture/save/encoded_picture.h"

namespace tessary {
namespace {

constexpr saving::SaveOptions kQuick = {
    .bmp = {}, .png = {.quality = 1, .interlace = 0}, .jpeg = {}, .pngProfile = 0};

}  // namespace

UniqueGlobal MakeClipboardPNG(const Picture& picture) {
    const auto png = Trapped(std::shared_ptr<const EncodedPicture>(), [&] {
        return EncodePicture(picture, *SaverFormatAt(kPngFormat), kQuick, 0);
    });
    UniqueGlobal block(png ? GlobalAlloc(GMEM_MOVEABLE, png->bytes.Size()) : nullptr);
    if (!block) return block;
    auto* to = static_cast<uint8_t*>(GlobalLock(block.Get()));
    for (const std::vector<uint8_t>& piece : png->bytes.Pieces()) {
        std::memcpy(to, piece.data(), piece.size());
        to += piece.size();
    }
    GlobalUnlock(block.Get());
    return block;
}

}  // namespace tessary
