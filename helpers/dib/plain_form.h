// Which plain form a bitmap of any kind gets, and its info block.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "helpers/dib/dib_view.h"
#include "helpers/dib/source_format.h"

namespace tessary::dib {

// Largest bits block that is made: what a 32-bit process can hold beside the program.
constexpr uint64_t kMaxBitsSize = 0x60000000;

// An info block in the plain form: the header, then the masks or all entries that the depth can
// index.
struct InfoBlock {
    std::array<uint8_t, kMaxInfoBlockSize> bytes{};
    size_t size = 0;

    std::span<const uint8_t> Bytes() const { return std::span(bytes).first(size); }
};

// The plain form of a bitmap; depth and masks stay what they are wherever the plain form has them.
// 2 bits become 4, run-length encoding is decoded at its own depth, 16 and 24 bits with unusual
// masks become 24, 32 bits with unusual masks 32; the linear light of 64 bits becomes 32 bits
// of the usual brightness (sRGB). Whatever has a mask for alpha becomes 32 bits with alpha.
struct PlainForm {
    PixelFormat format;
    bool sameBits;  // a raw row of the source is, but for its padding, a row of the plain form
};
PlainForm PlainFormOf(const SourceFormat& source);

// Bytes of the plain bits block, 0 when it would exceed kMaxBitsSize.
size_t PlainBitsSize(const SourceFormat& source);

// False when `dataBytes` of pixel data are so few for so large a picture that the header must be a
// lie: what exceeds 64 MB (and not kMaxBitsSize) has to be backed by a 64th of its rows, or by the
// most that run-length codes can expand.
bool IsBacked(const SourceFormat& source, uint64_t dataBytes);

// The info block of the plain form, height above 0 (bottom row first). `table` is the source's
// colour table as far as it exists, cut anywhere: missing entries become black. If there is none at
// all the entries are a ramp from black to white.
InfoBlock MakePlainInfo(const SourceFormat& source, std::span<const uint8_t> table);

}  // namespace tessary::dib
