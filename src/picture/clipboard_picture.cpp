#include "picture/clipboard_picture.h"

#include <cstring>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "helpers/dib/check_dib.h"
#include "helpers/dib/dib_view.h"
#include "helpers/dib/unpack_row.h"
#include "picture/current_picture.h"
#include "picture/opaque_picture.h"
#include "picture/packed_dib.h"

namespace tessary {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr DWORD kSrgbSpace = 0x73524742;  // LCS_sRGB, whose letters compilers warn of

// Keeps a global block locked for its own life.
class GlobalBlockLock {
  public:
    explicit GlobalBlockLock(HGLOBAL block) : block_(block), address_(GlobalLock(block)) {}
    GlobalBlockLock(const GlobalBlockLock&) = delete;
    GlobalBlockLock& operator=(const GlobalBlockLock&) = delete;
    ~GlobalBlockLock() {
        if (address_ != nullptr) GlobalUnlock(block_);
    }

    std::span<uint8_t> Content() const {
        if (address_ == nullptr) return {};
        return {static_cast<uint8_t*>(address_), GlobalSize(block_)};
    }

  private:
    HGLOBAL block_;
    void* address_;
};

// A new movable global block of `size` bytes, filled by `fill`; null without memory, or when `fill`
// answers false.
template <typename Fill>
UniqueGlobal FilledGlobal(size_t size, Fill fill) {
    UniqueGlobal block(GlobalAlloc(GMEM_MOVEABLE, size));
    if (!block) return {};
    const GlobalBlockLock lock(block.Get());
    // The system may have rounded the size up.
    if (lock.Content().size() < size || !fill(lock.Content().first(size))) return {};
    return block;
}

void CopyBytes(std::span<uint8_t> target, Bytes source) {
    if (!source.empty()) std::memcpy(target.data(), source.data(), source.size());
}

// The masks right behind a 40-byte header; empty where there are none.
Bytes MasksBehind(Bytes info) {
    if (info.size() < dib::kInfoHeaderSize) return {};
    dib::BitmapInfoHeader header;
    std::memcpy(&header, info.data(), sizeof(header));
    const bool hasMasks =
        header.size == dib::kInfoHeaderSize && header.compression == dib::kCompressionBitFields;
    return hasMasks ? info.subspan(dib::kInfoHeaderSize, 12) : Bytes();
}

// An info block is never shorter than what the clipboard had: the masks of 32-bit pixels keep their
// place behind a header that no longer needs them.
std::vector<uint8_t> InfoBlockOf(Bytes plain, Bytes masks) {
    std::vector<uint8_t> info(plain.begin(), plain.end());
    const size_t size = dib::kInfoHeaderSize + masks.size();
    if (size > info.size()) {
        info.resize(size);
        CopyBytes(std::span(info).subspan(dib::kInfoHeaderSize), masks);
    }
    return info;
}

ClipboardBlock ReadBlock(Bytes block, Picture& picture) {
    const std::optional<PackedDib> packed = SplitPackedDib(block);
    if (!packed) return ClipboardBlock::kNoPicture;
    const dib::CheckedDib checked = dib::CheckDib(packed->info, packed->bits);
    if (checked.Error() != dib::DibError::kNone) return ClipboardBlock::kNoPicture;
    const std::vector<uint8_t> info =
        InfoBlockOf(checked.KeepsInfo() ? packed->info : checked.Info(), MasksBehind(packed->info));
    picture = Picture::Make(info, [&](std::span<uint8_t> rows) {
        if (checked.KeepsBits()) {
            CopyBytes(rows, packed->bits);
        } else {
            checked.WriteBits(rows);
        }
        return true;
    });
    if (!picture) return ClipboardBlock::kNoMemory;
    // Some put a header with alpha before pixels without.
    if (picture.HasAlpha() && !dib::RowReader(picture.View()).HasAlpha()) {
        picture = OpaquePicture(picture.View());
    }
    return picture ? ClipboardBlock::kPicture : ClipboardBlock::kNoMemory;
}

void WriteBottomUp(const dib::DibView& picture, std::span<uint8_t> target) {
    for (int32_t y = picture.Height() - 1; y >= 0; --y) {
        CopyBytes(target, picture.Row(y));
        if (picture.Format() == dib::PixelFormat::kBgrx32) {
            for (size_t alpha = 3; alpha < picture.Stride(); alpha += 4)
                target[alpha] = 0xFF;
        }
        target = target.subspan(picture.Stride());
    }
}

}  // namespace

ClipboardBlock ReadClipboardDIB(HGLOBAL block, Picture& picture) {
    return Trapped(ClipboardBlock::kNoMemory, [&] {
        const GlobalBlockLock lock(block);
        return ReadBlock(lock.Content(), picture);
    });
}

int16_t PictureFromClipboardDIB(HGLOBAL block) {
    Picture picture;
    if (ReadClipboardDIB(block, picture) == ClipboardBlock::kPicture) {
        SetCurrentPicture(std::move(picture));
    }
    return 0;
}

UniqueGlobal MakeClipboardDIBWithAlpha(const Picture& picture) {
    if (!picture || !picture.HasAlpha()) return {};
    const dib::DibView& view = picture.View();
    BITMAPV5HEADER header{};
    header.bV5Size = sizeof(header);
    header.bV5Width = view.Width();
    header.bV5Height = view.Height();
    header.bV5Planes = 1;
    header.bV5BitCount = 32;
    header.bV5Compression = BI_BITFIELDS;
    header.bV5SizeImage = static_cast<DWORD>(view.Bits().size());
    header.bV5XPelsPerMeter = view.Header().xPelsPerMeter;
    header.bV5YPelsPerMeter = view.Header().yPelsPerMeter;
    header.bV5RedMask = 0x00FF0000;
    header.bV5GreenMask = 0x0000FF00;
    header.bV5BlueMask = 0x000000FF;
    header.bV5AlphaMask = 0xFF000000;
    header.bV5CSType = kSrgbSpace;
    header.bV5Intent = LCS_GM_IMAGES;
    return FilledGlobal(sizeof(header) + view.Bits().size(), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), &header, sizeof(header));
        WriteBottomUp(view, target.subspan(sizeof(header)));
        return true;
    });
}

UniqueGlobal MakeClipboardDIB(const Picture& picture, dib::Backdrop backdrop) {
    if (!picture) return {};
    const Picture opaque = OpaquePicture(picture.View(), backdrop);
    const Picture& given = opaque ? opaque : picture;
    if (given.HasAlpha()) return {};  // no memory
    const dib::DibView& view = given.View();
    dib::BitmapInfoHeader header = view.Header();
    const size_t infoSize = dib::InfoBlockSize(header);
    header.height = view.Height();
    header.sizeImage = static_cast<uint32_t>(view.Bits().size());
    return FilledGlobal(infoSize + view.Bits().size(), [&](std::span<uint8_t> target) {
        CopyBytes(target, given.Info().first(infoSize));
        std::memcpy(target.data(), &header, sizeof(header));
        WriteBottomUp(view, target.subspan(infoSize));
        return true;
    });
}

}  // namespace tessary
