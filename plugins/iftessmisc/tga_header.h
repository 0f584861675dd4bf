// The head and the tail of a TGA file. Format: Truevision TGA File Format Specification, version
// 2.0.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "helpers/dib/byte_source.h"

namespace tessary::misc {

struct TgaHeader {
    static constexpr size_t kSize = 18;

    uint8_t idLength = 0;
    uint8_t mapType = 0;  // 1: there is a colour map
    uint8_t type = 0;     // 1 with map, 2 colours, 3 grey; 8 more: run-length encoded
    uint16_t mapFirst = 0;
    uint16_t mapLength = 0;
    uint8_t mapBits = 0;  // of an entry
    uint16_t width = 0;
    uint16_t height = 0;
    uint8_t bits = 0;  // of a pixel
    uint8_t descriptor = 0;

    bool IsMapped() const { return (type & 7) == 1; }
    bool IsGrey() const { return (type & 7) == 3; }
    bool IsEncoded() const { return (type & 8) != 0; }
    unsigned AttributeBits() const { return descriptor & 0xF; }
    unsigned PixelBytes() const { return (bits + 7u) / 8; }
    unsigned EntryBytes() const { return (mapBits + 7u) / 8; }
    uint64_t MapOffset() const { return kSize + idLength; }
    // A map of a picture that needs none is passed by, too.
    uint64_t PixelOffset() const {
        return MapOffset() + (mapType == 1 ? uint64_t{mapLength} * EntryBytes() : 0);
    }
};

// What the end of a file says of its alpha.
enum class TgaAlpha : uint8_t { kNotSaid, kNone, kPlain, kMultiplied };

// Nothing where no TGA file begins so: there is no signature, so all that can be wrong must be
// right. `isKnown`: it is told by its end; then the fields that nobody needs may be anything.
std::optional<TgaHeader> ReadTgaHeader(std::span<const uint8_t> bytes, bool isKnown = false);

// Whether the file ends in the signature of version 2.
bool HasTgaSignature(dib::ByteSource& file);

TgaAlpha AlphaOfTga(dib::ByteSource& file);

}  // namespace tessary::misc
