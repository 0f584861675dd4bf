#include "helpers/dib/source_format.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "helpers/dib/bitmap_header.h"

namespace tessary::dib {
namespace {

// Header sizes, from the OS/2 and the Windows documents.
constexpr uint32_t kCoreHeaderSize = 12;     // BITMAPCOREHEADER: 16-bit dimensions, 3-byte table
constexpr uint32_t kShortestOs2Header = 16;  // BITMAPINFOHEADER2 cut behind the depth
constexpr uint32_t kFullOs2Header = 64;
constexpr uint32_t kHeaderWithMasks = 52;  // from here on the masks are part of the header
constexpr uint32_t kHeaderWithAlpha = 56;
constexpr uint32_t kMaskOffset = 40;

constexpr uint32_t kOs2CompressionRle24 = 4;  // 3 is Huffman, as 3 to 5 mean other things elsewhere

template <typename T>
T ReadPrefix(std::span<const uint8_t> bytes, size_t length) {
    T value{};
    std::memcpy(&value, bytes.data(), std::min(length, sizeof(value)));
    return value;
}

// Every kind of header as the 40-byte one: what it lacks is 0.
DibError ReadAnyHeader(std::span<const uint8_t> info, BitmapInfoHeader& header) {
    if (info.size() < sizeof(header.size)) return DibError::kTruncatedHeader;
    const auto size = ReadPrefix<uint32_t>(info, sizeof(uint32_t));
    if (size != kCoreHeaderSize && size < kShortestOs2Header) return DibError::kUnsupportedHeader;
    if (info.size() < std::min(size, kInfoHeaderSize)) return DibError::kTruncatedHeader;
    if (size == kCoreHeaderSize) {
        const auto core = ReadPrefix<CoreHeader>(info, kCoreHeaderSize);
        header = {};
        header.size = size;
        header.width = core.width;
        header.height = core.height;
        header.bitCount = core.bitCount;
    } else {
        header = ReadPrefix<BitmapInfoHeader>(info, size);
    }
    return DibError::kNone;
}

bool IsKnownDepth(uint16_t bitCount) {
    switch (bitCount) {
        case 1:
        case 2:
        case 4:
        case 8:
        case 16:
        case 24:
        case 32:
        case 64:
            return true;
        default:
            return false;
    }
}

DibError ReadMasks(std::span<const uint8_t> info, const BitmapInfoHeader& header,
                   SourceFormat& format) {
    const bool inHeader = header.size >= kHeaderWithMasks;
    const bool hasAlpha = inHeader ? header.size >= kHeaderWithAlpha
                                   : header.compression == kCompressionAlphaBitFields;
    const size_t offset = inHeader ? kMaskOffset : header.size;
    const size_t length = hasAlpha ? 16 : 12;
    if (info.size() < offset + length) return DibError::kTruncatedHeader;
    const auto masks = ReadPrefix<ChannelMasks>(info.subspan(offset), length);
    // Writers that leave all masks 0 mean the usual ones.
    if ((masks.red | masks.green | masks.blue) != 0) format.masks = masks;
    if (!inHeader) format.tableOffset += static_cast<uint32_t>(length);
    return DibError::kNone;
}

DibError ReadCompression(std::span<const uint8_t> info, const BitmapInfoHeader& header,
                         SourceFormat& format) {
    const bool isOs2 = header.size < kInfoHeaderSize || header.size == kFullOs2Header;
    switch (header.compression) {
        case kCompressionRgb:
            return DibError::kNone;
        case kCompressionRle8:
            format.encoding = Encoding::kRle8;
            return header.bitCount == 8 ? DibError::kNone : DibError::kUnsupportedCompression;
        case kCompressionRle4:
            format.encoding = Encoding::kRle4;
            return header.bitCount == 4 ? DibError::kNone : DibError::kUnsupportedCompression;
        case kOs2CompressionRle24:
            format.encoding = Encoding::kRle24;
            return isOs2 && header.bitCount == 24 ? DibError::kNone
                                                  : DibError::kUnsupportedCompression;
        case kCompressionBitFields:
        case kCompressionAlphaBitFields:
            if (isOs2 || header.bitCount <= 8 || header.bitCount == 64)
                return DibError::kUnsupportedCompression;
            return ReadMasks(info, header, format);
        default:
            return DibError::kUnsupportedCompression;
    }
}

}  // namespace

DibError ParseHeader(std::span<const uint8_t> info, SourceFormat& format) {
    BitmapInfoHeader header;
    if (const DibError error = ReadAnyHeader(info, header); error != DibError::kNone) return error;
    if (header.width <= 0 || header.height == 0 ||
        header.height == std::numeric_limits<int32_t>::min()) {
        return DibError::kBadDimensions;
    }
    format = {};
    format.headerSize = header.size;
    format.width = header.width;
    format.height = header.height < 0 ? -header.height : header.height;
    format.topDown = header.height < 0;
    format.bitCount = header.bitCount;
    format.masks = header.bitCount == 16 ? kDefaultMasks16 : kDefaultMasks32;
    format.xPelsPerMeter = header.xPelsPerMeter;
    format.yPelsPerMeter = header.yPelsPerMeter;
    format.tableOffset = header.size;
    format.tableEntrySize = header.size == kCoreHeaderSize ? 3 : 4;
    const DibError error = ReadCompression(info, header, format);
    if (error != DibError::kNone) return error;
    if (!IsKnownDepth(header.bitCount)) return DibError::kUnsupportedDepth;

    if (header.bitCount <= 8) {
        format.tableEntries = PaletteEntries(header);
    } else if (header.colorsUsed <= kMaxPaletteEntries) {
        format.tableEntries = header.colorsUsed;  // a hint for palette displays
    }
    return DibError::kNone;
}

}  // namespace tessary::dib
