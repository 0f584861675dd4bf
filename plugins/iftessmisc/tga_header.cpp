#include "plugins/iftessmisc/tga_header.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

// The footer: where the extension area is, where the developer area is, the signature.
constexpr size_t kFooterSize = 26;
constexpr size_t kSignatureOffset = 8;
constexpr std::string_view kSignature = "TRUEVISION-XFILE";
constexpr uint16_t kExtensionSize = 495;
constexpr uint64_t kAttributesOffset = 494;

bool IsOneOf(unsigned value, std::initializer_list<unsigned> values) {
    return std::ranges::find(values, value) != values.end();
}

bool HasFooter(dib::ByteSource& file, std::array<uint8_t, kFooterSize>& footer) {
    if (file.Size() < TgaHeader::kSize + kFooterSize ||
        file.ReadAt(file.Size() - kFooterSize, footer) != kFooterSize) {
        return false;
    }
    return std::ranges::equal(std::span(footer).subspan(kSignatureOffset, kSignature.size()),
                              kSignature);
}

}  // namespace

std::optional<TgaHeader> ReadTgaHeader(std::span<const uint8_t> bytes, bool isKnown) {
    if (bytes.size() < TgaHeader::kSize) return std::nullopt;
    const TgaHeader header{.idLength = bytes[0],
                           .mapType = bytes[1],
                           .type = bytes[2],
                           .mapFirst = Little16(&bytes[3]),
                           .mapLength = Little16(&bytes[5]),
                           .mapBits = bytes[7],
                           .width = Little16(&bytes[12]),
                           .height = Little16(&bytes[14]),
                           .bits = bytes[16],
                           .descriptor = bytes[17]};
    if (header.width == 0 || header.height == 0 || header.mapType > 1 ||
        !IsOneOf(header.type, {1, 2, 3, 9, 10, 11})) {
        return std::nullopt;
    }
    if (header.mapType == 1 && !IsOneOf(header.mapBits, {15, 16, 24, 32})) return std::nullopt;
    if (header.IsMapped()) {
        if (header.mapType != 1 || header.mapLength == 0 || !IsOneOf(header.bits, {8, 15, 16})) {
            return std::nullopt;
        }
    } else if (header.IsGrey() ? !IsOneOf(header.bits, {8, 16})
                               : !IsOneOf(header.bits, {15, 16, 24, 32})) {
        return std::nullopt;
    }
    if (isKnown) return header;
    const bool hasStrayMap =
        header.mapType == 0 && (header.mapFirst != 0 || header.mapLength != 0 ||
                                !IsOneOf(header.mapBits, {0, 8, 15, 16, 24, 32}));
    // The two highest bits once told that rows are interleaved.
    if (hasStrayMap || (header.descriptor & 0xC0) != 0 ||
        !IsOneOf(header.AttributeBits(), {0, 1, 8})) {
        return std::nullopt;
    }
    return header;
}

bool HasTgaSignature(dib::ByteSource& file) {
    std::array<uint8_t, kFooterSize> footer{};
    return HasFooter(file, footer);
}

TgaAlpha AlphaOfTga(dib::ByteSource& file) {
    std::array<uint8_t, kFooterSize> footer{};
    if (!HasFooter(file, footer)) return TgaAlpha::kNotSaid;
    const uint64_t extension = Little32(footer.data());
    std::array<uint8_t, 2> size{};
    std::array<uint8_t, 1> attributes{};
    if (extension < TgaHeader::kSize || file.ReadAt(extension, size) != size.size() ||
        Little16(size.data()) < kExtensionSize ||
        file.ReadAt(extension + kAttributesOffset, attributes) != attributes.size()) {
        return TgaAlpha::kNotSaid;
    }
    switch (attributes[0]) {
        case 3:
            return TgaAlpha::kPlain;
        case 4:
            return TgaAlpha::kMultiplied;
        default:
            return TgaAlpha::kNone;
    }
}

}  // namespace tessary::misc
