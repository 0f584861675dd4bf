#include "plugins/common/picture_target.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "helpers/dib/dib_view.h"
#include "helpers/dib/embedded_profile.h"

namespace tessary::codec {
namespace {

// Hosts keep sizes of blocks in signed 32-bit values.
constexpr uint64_t kMostBits = std::numeric_limits<int32_t>::max() - 0xFFFF;

// Smaller pictures do no harm, whatever their file looks like.
constexpr uint64_t kHarmlessBits = 256u << 20;
constexpr uint64_t kHighestRatio = 20000;

std::vector<uint8_t> PlainInfo(const dib::BitmapInfoHeader& header,
                               std::span<const dib::PaletteEntry> palette) {
    std::vector<uint8_t> info(dib::InfoBlockSize(header));
    std::memcpy(info.data(), &header, sizeof header);
    if (header.bitCount == 32) {
        std::memcpy(info.data() + sizeof header, dib::kMasksAlpha, sizeof dib::kMasksAlpha);
    }
    const size_t entries = std::min<size_t>(dib::PaletteEntries(header), palette.size());
    if (entries != 0) {
        std::memcpy(info.data() + sizeof header, palette.data(),
                    entries * sizeof(dib::PaletteEntry));
    }
    return info;
}

}  // namespace

bool IsPlausibleSize(uint64_t bitsSize, uint64_t sourceSize) {
    return bitsSize <= kHarmlessBits || bitsSize / kHighestRatio <= sourceSize;
}

Result CreatePicture(PictureTarget& target, const PictureForm& form,
                     std::span<const dib::PaletteEntry> palette, uint64_t sourceSize,
                     PictureRows& rows) {
    constexpr uint32_t kMostPixels = std::numeric_limits<int32_t>::max();
    if (form.width == 0 || form.height == 0 || form.width > kMostPixels ||
        form.height > kMostPixels) {
        return Result::kBrokenData;
    }
    const uint64_t stride = dib::RowStride(form.width, form.bitCount);
    if (stride > kMostBits / form.height) return Result::kOutOfMemory;
    const uint64_t bitsSize = stride * form.height;
    if (!IsPlausibleSize(bitsSize, sourceSize)) return Result::kBrokenData;

    dib::BitmapInfoHeader header{};
    header.size = dib::kInfoHeaderSize;
    header.width = static_cast<int32_t>(form.width);
    header.height = static_cast<int32_t>(form.height);
    header.planes = 1;
    header.bitCount = form.bitCount;
    header.compression =
        form.bitCount == 32 ? dib::kCompressionAlphaBitFields : dib::kCompressionRgb;
    header.sizeImage = static_cast<uint32_t>(bitsSize);
    header.xPelsPerMeter = form.xPelsPerMeter;
    header.yPelsPerMeter = form.yPelsPerMeter;
    const std::vector<uint8_t> info =
        form.profile.empty() ? PlainInfo(header, palette)
                             : dib::InfoWithProfile(PlainInfo(header, palette), form.profile);
    if (!target.Allocate(info.size(), static_cast<size_t>(bitsSize))) return Result::kOutOfMemory;
    std::ranges::copy(info, target.Info());
    rows = {target.Bits(), static_cast<size_t>(stride), form.height};
    return Result::kSuccess;
}

}  // namespace tessary::codec
