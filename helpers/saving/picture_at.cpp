#include "helpers/saving/picture_at.h"

#include <windows.h>

#include <cstring>
#include <limits>

#include "helpers/dib/check_dib.h"

namespace tessary::saving {
namespace {

// Asks the system for the pages. Asking the heap for the block would be sharper, but it ends the
// process when the address is none of its own, and callers may pass any.
bool IsReadable(const void* address, uint64_t size) {
    const auto begin = reinterpret_cast<uintptr_t>(address);
    if (size > std::numeric_limits<uintptr_t>::max() - begin) return false;
    const uintptr_t end = begin + static_cast<uintptr_t>(size);
    for (uintptr_t at = begin; at < end;) {
        MEMORY_BASIC_INFORMATION pages;
        if (VirtualQuery(reinterpret_cast<const void*>(at), &pages, sizeof(pages)) == 0) {
            return false;
        }
        if (pages.State != MEM_COMMIT || (pages.Protect & (PAGE_NOACCESS | PAGE_GUARD)) != 0) {
            return false;
        }
        at = reinterpret_cast<uintptr_t>(pages.BaseAddress) + pages.RegionSize;
    }
    return true;
}

std::span<const uint8_t> BytesAt(const void* address, uint64_t size) {
    return {static_cast<const uint8_t*>(address), static_cast<size_t>(size)};
}

// Bytes of the info block that a header begins, of the plain form or not.
uint64_t InfoSize(const dib::BitmapInfoHeader& header) {
    uint64_t size = header.size + uint64_t{dib::PaletteEntries(header)} * sizeof(dib::PaletteEntry);
    if (header.size == dib::kInfoHeaderSize) {
        if (header.compression == dib::kCompressionBitFields) size += 12;
        if (header.compression == dib::kCompressionAlphaBitFields) size += 16;
    }
    return size;
}

// 0 for run lengths whose size the header does not tell: nothing says where they may be read.
uint64_t BitsSize(const dib::BitmapInfoHeader& header) {
    if (header.compression == dib::kCompressionRle4 ||
        header.compression == dib::kCompressionRle8) {
        return header.sizeImage;
    }
    return dib::BitsBlockSize(header);
}

}  // namespace

PictureAt::PictureAt(const void* info, const void* bits) {
    if (!IsReadable(info, dib::kInfoHeaderSize)) return;
    dib::BitmapInfoHeader header;
    std::memcpy(&header, info, sizeof(header));
    // Of and CheckDib refuse the dimensions and depths whose sizes come out wrong here.
    const uint64_t infoSize = InfoSize(header);
    const uint64_t bitsSize = BitsSize(header);
    if (header.size < dib::kInfoHeaderSize || bitsSize == 0 || !IsReadable(info, infoSize) ||
        !IsReadable(bits, bitsSize)) {
        return;
    }
    const auto infoBlock = BytesAt(info, infoSize);
    const auto bitsBlock = BytesAt(bits, bitsSize);
    view_ = dib::DibView::Of(infoBlock, bitsBlock);
    if (view_) return;

    const dib::CheckedDib checked = dib::CheckDib(infoBlock, bitsBlock);
    if (checked.Error() != dib::DibError::kNone) return;
    ownInfo_.assign(checked.Info().begin(), checked.Info().end());
    ownBits_.resize(checked.BitsSize());
    if (!checked.KeepsBits()) checked.WriteBits(ownBits_);
    view_ = dib::DibView::Of(checked.KeepsInfo() ? infoBlock : ownInfo_,
                             checked.KeepsBits() ? bitsBlock : ownBits_);
}

}  // namespace tessary::saving
