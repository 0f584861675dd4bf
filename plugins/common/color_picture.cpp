#include "plugins/common/color_picture.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

#include "plugins/common/flatten_rows.h"
#include "plugins/common/inks.h"
#include "plugins/common/palette.h"
#include "plugins/common/srgb.h"

namespace tessary::codec {
namespace {

using color::Layout;

bool IsDeep(Layout layout) {
    return layout == Layout::kBgr16BigEndian || layout == Layout::kBgra16BigEndian;
}

// A sample of 16 bits with its high byte first, rounded to 8.
uint8_t NearestByte(const uint8_t* sample) {
    const unsigned deep = sample[0] * 256u + sample[1];
    return static_cast<uint8_t>((deep * 255 + 32895) >> 16);
}

// To colours of 8 bits in sRGB, alpha as it is; null where the pixels are that already.
std::function<void(const uint8_t*, uint8_t*, size_t)> ToBytes(const ColorPicture& picture) {
    if (const auto transform = ToSrgb(picture.profile, picture.layout)) {
        return [transform](const uint8_t* in, uint8_t* out, size_t pixels) {
            transform->Convert(in, out, pixels);
        };
    }
    if (picture.layout == Layout::kCmyk8 || picture.layout == Layout::kCmyk8Inverted) {
        const bool areInverted = picture.layout == Layout::kCmyk8Inverted;
        return [areInverted](const uint8_t* in, uint8_t* out, size_t pixels) {
            InksToColors(in, out, pixels, areInverted);
        };
    }
    if (!IsDeep(picture.layout)) return nullptr;
    const size_t samples = color::TargetBytesOf(picture.layout);
    return [samples](const uint8_t* in, uint8_t* out, size_t pixels) {
        for (size_t i = 0; i < pixels * samples; ++i)
            out[i] = NearestByte(in + 2 * i);
    };
}

RowConversion ConversionOf(const ColorPicture& picture, bool flattens) {
    const auto toBytes = ToBytes(picture);
    const auto stored = static_cast<unsigned>(color::BytesOf(picture.layout));
    const uint32_t width = picture.width;
    if (!flattens && !toBytes) return {stored};
    if (!flattens) {
        return {stored,
                [toBytes, width](const uint8_t* in, uint8_t* out) { toBytes(in, out, width); }};
    }
    return {stored, [=](const uint8_t* in, uint8_t* out) {
                if (!toBytes) return FlattenColorRow(in, out, width, kWhite);
                constexpr uint32_t kPart = 256;
                std::array<uint8_t, kPart * 4> part;
                for (uint32_t x = 0; x < width; x += kPart) {
                    const uint32_t count = std::min(kPart, width - x);
                    toBytes(in + size_t{x} * stored, part.data(), count);
                    FlattenColorRow(part.data(), out + size_t{x} * 3, count, kWhite);
                }
            }};
}

}  // namespace

PictureForm FormOf(const ColorPicture& picture) {
    const bool swaps = SwapsAxes(picture.orientation);
    return {.width = swaps ? picture.height : picture.width,
            .height = swaps ? picture.width : picture.height,
            .bitCount = 24,
            .xPelsPerMeter = swaps ? picture.yPelsPerMeter : picture.xPelsPerMeter,
            .yPelsPerMeter = swaps ? picture.xPelsPerMeter : picture.yPelsPerMeter};
}

Result CreateColorPicture(PictureTarget& target, const ColorPicture& picture, uint64_t sourceSize,
                          std::optional<OrientedRows>& rows) {
    ColorPicture own = picture;
    PictureForm form = FormOf(own);
    const bool keepsAlpha = own.HasAlpha() && target.TakesAlpha();
    if (keepsAlpha) form.bitCount = 32;
    if (own.layout == Layout::kBgr8) {
        form.profile = ProfileToHandOn(target, own.profile);
        if (!form.profile.empty()) own.profile.reset();
    }
    PictureRows made;
    const Result created = CreatePicture(target, form, {}, sourceSize, made);
    if (created != Result::kSuccess) return created;
    rows.emplace(RowPlaces{made, own.width, own.height, form.bitCount / 8u, own.orientation},
                 ConversionOf(own, own.HasAlpha() && !keepsAlpha));
    return Result::kSuccess;
}

}  // namespace tessary::codec
