#include "helpers/saving/picture_at.h"

#include <windows.h>

#include <cstring>
#include <limits>

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

}  // namespace

std::optional<dib::DibView> PictureAt(const void* info, const void* bits) {
    if (!IsReadable(info, dib::kInfoHeaderSize)) return std::nullopt;
    dib::BitmapInfoHeader header;
    std::memcpy(&header, info, sizeof(header));

    // Of refuses the dimensions and depths whose sizes come out wrong here.
    const uint32_t infoSize = dib::InfoBlockSize(header);
    const uint64_t height = header.height < 0 ? -int64_t{header.height} : header.height;
    const uint64_t bitsSize =
        dib::RowStride(static_cast<uint64_t>(header.width), header.bitCount) * height;
    if (!IsReadable(info, infoSize) || !IsReadable(bits, bitsSize)) return std::nullopt;
    return dib::DibView::Of(BytesAt(info, infoSize), BytesAt(bits, bitsSize));
}

}  // namespace tessary::saving
