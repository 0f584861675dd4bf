// Reading the header of a bitmap of any kind: what the pixels are before they are made plain.
#pragma once

#include <cstdint>
#include <span>

#include "helpers/dib/dib_error.h"

namespace tessary::dib {

enum class Encoding { kRaw, kRle4, kRle8, kRle24 };

// Which bits of a pixel, read as a little-endian number, hold each channel; 0: none.
struct ChannelMasks {
    uint32_t red;
    uint32_t green;
    uint32_t blue;
    uint32_t alpha;
};

constexpr ChannelMasks kDefaultMasks16 = {0x7C00, 0x03E0, 0x001F, 0};
constexpr ChannelMasks kDefaultMasks32 = {0xFF0000, 0x00FF00, 0x0000FF, 0};

// A header that was understood: every value is within the bounds given here.
struct SourceFormat {
    uint32_t headerSize = 0;  // bytes, as the header itself says; 12 or at least 16
    int32_t width = 0;        // 1 or more
    int32_t height = 0;       // 1 or more
    bool topDown = false;     // the first stored row is the top one
    uint16_t bitCount = 0;    // 1, 2, 4, 8, 16, 24, 32, 64
    Encoding encoding = Encoding::kRaw;
    ChannelMasks masks{};  // of depths above 8
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    uint32_t tableOffset = 0;     // from the header's start to the colour table, behind any masks
    uint32_t tableEntrySize = 4;  // bytes: 3 behind a 12-byte header
    uint32_t tableEntries = 0;    // announced, at most 256
};

// Bytes from the header's start within which everything lies that ParseHeader looks at.
constexpr uint32_t kHeaderBytesRead = 72;

// Understands the header at the start of `info`: 12 bytes (OS/2 1.x), 16 to 39 and 64 bytes (OS/2
// 2.x), 40 bytes and longer (Windows). `info` may end behind header and masks. `format` is complete
// when the result is kNone.
DibError ParseHeader(std::span<const uint8_t> info, SourceFormat& format);

}  // namespace tessary::dib
