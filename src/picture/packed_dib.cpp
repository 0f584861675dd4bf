#include "picture/packed_dib.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "helpers/dib/bitmap_header.h"
#include "helpers/dib/source_format.h"

namespace tessary {
namespace {

constexpr uint64_t kMasksSize = 12;  // three of 4 bytes

template <typename T>
T ReadAt(std::span<const uint8_t> block, size_t offset) {
    T value{};
    std::memcpy(&value, block.data() + offset, sizeof(value));
    return value;
}

// Colours between header and pixels, as the header has it: writers may announce more than the depth
// can index, and put as many.
uint64_t AnnouncedColors(std::span<const uint8_t> block, const dib::SourceFormat& format) {
    constexpr size_t kOffset = offsetof(dib::BitmapInfoHeader, colorsUsed);
    if (format.headerSize < dib::kInfoHeaderSize) return format.tableEntries;
    const auto announced = ReadAt<uint32_t>(block, kOffset);
    return announced != 0 ? announced : format.tableEntries;
}

// Long headers hold the masks; some writers, the system among them, repeat them behind the header
// all the same. Whether they are there: the block must have the room and the very same bytes.
bool RepeatsMasks(std::span<const uint8_t> block, const dib::SourceFormat& format,
                  uint64_t pixelBytes) {
    constexpr size_t kMasksInHeader = dib::kInfoHeaderSize;
    if (format.headerSize < kMasksInHeader + kMasksSize ||
        block.size() < format.headerSize + kMasksSize + pixelBytes) {
        return false;
    }
    const auto compression = ReadAt<uint32_t>(block, offsetof(dib::BitmapInfoHeader, compression));
    return compression == dib::kCompressionBitFields &&
           std::memcmp(block.data() + kMasksInHeader, block.data() + format.headerSize,
                       kMasksSize) == 0;
}

}  // namespace

std::optional<PackedDib> SplitPackedDib(std::span<const uint8_t> block) {
    dib::SourceFormat format;
    if (dib::ParseHeader(block, format) != dib::DibError::kNone) return std::nullopt;
    if (format.bitCount == 2 || format.bitCount == 64 || format.headerSize > block.size())
        return std::nullopt;

    const bool raw = format.encoding == dib::Encoding::kRaw;
    // Width and height have 31 bits and a pixel at most 32, so none of this wraps 64 bits.
    const uint64_t stride = dib::RowStride(static_cast<uint64_t>(format.width), format.bitCount);
    const uint64_t height = static_cast<uint64_t>(format.height);
    if (raw && height > block.size() / stride) return std::nullopt;
    const uint64_t pixelBytes = raw ? stride * height : 1;

    uint64_t pixels = format.tableOffset;
    if (RepeatsMasks(block, format, pixelBytes)) pixels += kMasksSize;
    const uint64_t table = AnnouncedColors(block, format) * format.tableEntrySize;
    // Above 8 bits the table is a hint for palette displays, which some writers announce and leave
    // out: it is there when the block has room for it.
    if (format.bitCount <= 8 || pixels + table + pixelBytes <= block.size()) pixels += table;
    if (pixels + pixelBytes > block.size()) return std::nullopt;

    const auto offset = static_cast<size_t>(pixels);
    const std::span<const uint8_t> rest = block.subspan(offset);
    return PackedDib{block.first(offset), raw ? rest.first(static_cast<size_t>(pixelBytes)) : rest};
}

}  // namespace tessary
