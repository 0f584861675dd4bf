#include "helpers/dib/dib_view.h"

#include <cstring>
#include <limits>

namespace tessary::dib {
namespace {

// Null when depth, compression and masks are none of the plain ones.
std::optional<PixelFormat> FormatOf(const BitmapInfoHeader& header, std::span<const uint8_t> info) {
    if (header.compression == kCompressionBitFields) {
        const bool is565 =
            header.bitCount == 16 && info.size() >= kInfoHeaderSize + sizeof(kMasks565) &&
            std::memcmp(info.data() + kInfoHeaderSize, kMasks565, sizeof(kMasks565)) == 0;
        return is565 ? std::optional(PixelFormat::kRgb565) : std::nullopt;
    }
    if (header.compression == kCompressionAlphaBitFields) {
        const bool isPlain =
            header.bitCount == 32 && info.size() >= kInfoHeaderSize + sizeof(kMasksAlpha) &&
            std::memcmp(info.data() + kInfoHeaderSize, kMasksAlpha, sizeof(kMasksAlpha)) == 0;
        return isPlain ? std::optional(PixelFormat::kBgra32) : std::nullopt;
    }
    if (header.compression != kCompressionRgb) return std::nullopt;
    switch (header.bitCount) {
        case 1:
            return PixelFormat::kIndexed1;
        case 4:
            return PixelFormat::kIndexed4;
        case 8:
            return PixelFormat::kIndexed8;
        case 16:
            return PixelFormat::kRgb555;
        case 24:
            return PixelFormat::kBgr24;
        case 32:
            return PixelFormat::kBgrx32;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<DibView> DibView::Of(std::span<const uint8_t> info, std::span<const uint8_t> bits) {
    if (info.size() < kInfoHeaderSize) return std::nullopt;
    DibView view;
    std::memcpy(&view.header_, info.data(), sizeof(view.header_));
    const BitmapInfoHeader& header = view.header_;

    if (header.size != kInfoHeaderSize || header.planes != 1 || header.width <= 0 ||
        header.height == 0 || header.height == std::numeric_limits<int32_t>::min()) {
        return std::nullopt;
    }
    const std::optional<PixelFormat> format = FormatOf(header, info);
    if (!format) return std::nullopt;
    view.format_ = *format;

    const uint32_t mostColors = header.bitCount <= 8 ? 1u << header.bitCount : 0;
    if (header.colorsUsed > mostColors || info.size() < InfoBlockSize(header)) return std::nullopt;
    view.palette_ = {reinterpret_cast<const PaletteEntry*>(info.data() + kInfoHeaderSize),
                     PaletteEntries(header)};

    const uint64_t stride = RowStride(static_cast<uint64_t>(header.width), header.bitCount);
    if (bits.size() / stride < static_cast<uint64_t>(view.Height())) return std::nullopt;
    view.stride_ = static_cast<size_t>(stride);
    view.bits_ = bits.first(view.stride_ * static_cast<size_t>(view.Height()));
    return view;
}

}  // namespace tessary::dib
