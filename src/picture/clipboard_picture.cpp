#include "picture/clipboard_picture.h"

#include <algorithm>
#include <cstring>

#include "app/base/error.h"
#include "app/base/modGetFolder.h"
#include "helpers/dib/check_dib.h"
#include "helpers/dib/dib_view.h"
#include "picture/current_picture.h"
#include "picture/opaque_picture.h"
#include "picture/packed_dib.h"
#include "picture/save/save_picture.h"

namespace tessary {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr saving::PngSaveOptions kQuickPng = {.quality = 1, .interlace = 0};

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
OwnedBlock InfoBlockOf(Bytes plain, Bytes masks) {
    const size_t size = std::max(plain.size(), dib::kInfoHeaderSize + masks.size());
    return FilledBlock(size, [&](std::span<uint8_t> target) {
        if (size > plain.size()) CopyBytes(target.subspan(dib::kInfoHeaderSize), masks);
        CopyBytes(target, plain);
    });
}

ClipboardBlock ReadBlock(Bytes block, OwnedPicture& picture) {
    const std::optional<PackedDib> packed = SplitPackedDib(block);
    if (!packed) return ClipboardBlock::kNoPicture;
    const dib::CheckedDib checked = dib::CheckDib(packed->info, packed->bits);
    if (checked.Error() != dib::DibError::kNone) return ClipboardBlock::kNoPicture;
    OwnedBlock info =
        InfoBlockOf(checked.KeepsInfo() ? packed->info : checked.Info(), MasksBehind(packed->info));
    OwnedBlock bits =
        checked.KeepsBits()
            ? FilledBlock(packed->bits.size(),
                          [&](std::span<uint8_t> target) { CopyBytes(target, packed->bits); })
            : FilledBlock(checked.BitsSize(),
                          [&](std::span<uint8_t> target) { checked.WriteBits(target); });
    if (!info || !bits) return ClipboardBlock::kNoMemory;
    picture = OwnedPicture({info.Release(), bits.Release()});
    return ClipboardBlock::kPicture;
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

// A file name of our own in the temporary folder; the file goes with it.
class TemporaryFile {
  public:
    TemporaryFile() {
        wchar_t name[MAX_PATH]{};
        if (GetTempFileNameW(TemporaryFolder().c_str(), L"tsy", 0, name) != 0) name_ = name;
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!name_.empty()) DeleteFileW(name_.c_str());
    }

    const std::wstring& Name() const { return name_; }  // empty: there is none

  private:
    std::wstring name_;
};

UniqueGlobal FileAsBlock(const std::wstring& name) {
    const UniqueFile file(CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file || !GetFileSizeEx(file.Get(), &size) || size.HighPart != 0) return {};
    return FilledGlobal(size.LowPart, [&](std::span<uint8_t> target) {
        DWORD read = 0;
        return ReadFile(file.Get(), target.data(), size.LowPart, &read, nullptr) &&
               read == size.LowPart;
    });
}

}  // namespace

ClipboardBlock ReadClipboardDIB(HGLOBAL block, OwnedPicture& picture) {
    return Trapped(ClipboardBlock::kNoMemory, [&] {
        const GlobalBlockLock lock(block);
        return ReadBlock(lock.Content(), picture);
    });
}

int16_t PictureFromClipboardDIB(HGLOBAL block) {
    OwnedPicture picture;
    if (ReadClipboardDIB(block, picture) == ClipboardBlock::kPicture) {
        SetCurrentPicture(picture.Release());
    }
    return 0;
}

UniqueGlobal MakeClipboardDIB(const PicturePair& picture) {
    const OwnedPicture opaque = OpaquePicture(picture);
    const PicturePair& given = opaque ? opaque.Get() : picture;
    const BlockLock info(given.info);
    const BlockLock bits(given.bits);
    const std::optional<dib::DibView> view = dib::DibView::Of(info.Bytes(), bits.Bytes());
    if (!view || view->Format() == dib::PixelFormat::kBgra32) return {};  // no memory
    dib::BitmapInfoHeader header = view->Header();
    const size_t infoSize = dib::InfoBlockSize(header);
    header.height = view->Height();
    header.sizeImage = static_cast<uint32_t>(view->Bits().size());
    return FilledGlobal(infoSize + view->Bits().size(), [&](std::span<uint8_t> target) {
        CopyBytes(target, info.Bytes().first(infoSize));
        std::memcpy(target.data(), &header, sizeof(header));
        WriteBottomUp(*view, target.subspan(infoSize));
        return true;
    });
}

UniqueGlobal MakeClipboardPNG(const PicturePair& picture) {
    const BlockLock info(picture.info);
    const BlockLock bits(picture.bits);
    if (!dib::DibView::Of(info.Bytes(), bits.Bytes())) return {};
    const TemporaryFile file;
    if (file.Name().empty() ||
        !SavePNG(info.Address(), bits.Address(), file.Name(), kQuickPng, 0)) {
        return {};
    }
    return FileAsBlock(file.Name());
}

}  // namespace tessary
