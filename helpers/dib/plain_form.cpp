#include "helpers/dib/plain_form.h"

#include <algorithm>
#include <cstring>

namespace tessary::dib {
namespace {

constexpr uint64_t kUnbackedBitsSize = 64u << 20;
constexpr uint64_t kBackingOfRows = 64;       // bytes of picture per byte of data
constexpr uint64_t kPixelsPerRunByte = 128;   // the longest run is 255 pixels in 2 bytes
constexpr uint64_t kPixelsPerRun24Byte = 64;  // and in 4 bytes

bool HasColors(const ChannelMasks& masks, uint32_t red, uint32_t green, uint32_t blue) {
    return masks.red == red && masks.green == green && masks.blue == blue;
}

// Fills `entries` with the source's colour table, or a grey ramp when it has no whole entry.
void FillPalette(const SourceFormat& source, std::span<const uint8_t> table,
                 std::span<PaletteEntry> entries) {
    const size_t present = std::min<size_t>(
        {source.tableEntries, table.size() / source.tableEntrySize, entries.size()});
    for (size_t i = 0; i < present; ++i) {
        const uint8_t* from = table.data() + i * source.tableEntrySize;
        entries[i] = {from[0], from[1], from[2], 0};
    }
    if (present != 0) return;
    const size_t last = (size_t{1} << source.bitCount) - 1;
    for (size_t i = 0; i <= last; ++i) {
        const auto grey = static_cast<uint8_t>(i * 255 / last);
        entries[i] = {grey, grey, grey, 0};
    }
}

}  // namespace

PlainForm PlainFormOf(const SourceFormat& source) {
    const bool isRaw = source.encoding == Encoding::kRaw;
    const ChannelMasks& masks = source.masks;
    if (masks.alpha != 0) {
        const bool isPlain = source.bitCount == 32 &&
                             HasColors(masks, kMasksAlpha[0], kMasksAlpha[1], kMasksAlpha[2]) &&
                             masks.alpha == kMasksAlpha[3];
        return {PixelFormat::kBgra32, isPlain};
    }
    switch (source.bitCount) {
        case 1:
            return {PixelFormat::kIndexed1, true};
        case 2:
            return {PixelFormat::kIndexed4, false};
        case 4:
            return {PixelFormat::kIndexed4, isRaw};
        case 8:
            return {PixelFormat::kIndexed8, isRaw};
        case 16:
            if (HasColors(masks, 0x7C00, 0x03E0, 0x001F)) return {PixelFormat::kRgb555, true};
            if (HasColors(masks, kMasks565[0], kMasks565[1], kMasks565[2])) {
                return {PixelFormat::kRgb565, true};
            }
            return {PixelFormat::kBgr24, false};
        case 24:
            return {PixelFormat::kBgr24, isRaw && HasColors(masks, 0xFF0000, 0xFF00, 0xFF)};
        case 64:
            return {PixelFormat::kBgrx32, false};
        default:
            return {PixelFormat::kBgrx32, HasColors(masks, 0xFF0000, 0xFF00, 0xFF)};
    }
}

size_t PlainBitsSize(const SourceFormat& source) {
    const uint64_t stride =
        RowStride(static_cast<uint64_t>(source.width), BitsPerPixel(PlainFormOf(source).format));
    const auto height = static_cast<uint64_t>(source.height);
    return stride <= kMaxBitsSize / height ? static_cast<size_t>(stride * height) : 0;
}

bool IsBacked(const SourceFormat& source, uint64_t dataBytes) {
    const uint64_t bitsSize = PlainBitsSize(source);
    if (bitsSize <= kUnbackedBitsSize) return true;
    const uint64_t pixels =
        static_cast<uint64_t>(source.width) * static_cast<uint64_t>(source.height);
    switch (source.encoding) {
        case Encoding::kRaw:
            return dataBytes >= pixels * source.bitCount / 8 / kBackingOfRows;
        case Encoding::kRle24:
            return dataBytes >= pixels / kPixelsPerRun24Byte;
        default:
            return dataBytes >= pixels / kPixelsPerRunByte;
    }
}

InfoBlock MakePlainInfo(const SourceFormat& source, std::span<const uint8_t> table) {
    const PixelFormat format = PlainFormOf(source).format;
    BitmapInfoHeader header{};
    header.size = kInfoHeaderSize;
    header.width = source.width;
    header.height = source.height;
    header.planes = 1;
    header.bitCount = BitsPerPixel(format);
    header.compression = format == PixelFormat::kRgb565   ? kCompressionBitFields
                         : format == PixelFormat::kBgra32 ? kCompressionAlphaBitFields
                                                          : kCompressionRgb;
    header.sizeImage = static_cast<uint32_t>(PlainBitsSize(source));
    header.xPelsPerMeter = source.xPelsPerMeter;
    header.yPelsPerMeter = source.yPelsPerMeter;

    InfoBlock info;
    info.size = InfoBlockSize(header);
    std::memcpy(info.bytes.data(), &header, sizeof(header));
    uint8_t* behindHeader = info.bytes.data() + kInfoHeaderSize;
    if (format == PixelFormat::kRgb565) {
        std::memcpy(behindHeader, kMasks565, sizeof(kMasks565));
    } else if (format == PixelFormat::kBgra32) {
        std::memcpy(behindHeader, kMasksAlpha, sizeof(kMasksAlpha));
    } else if (header.bitCount <= 8) {
        FillPalette(source, table,
                    {reinterpret_cast<PaletteEntry*>(behindHeader), PaletteEntries(header)});
    }
    return info;
}

}  // namespace tessary::dib
