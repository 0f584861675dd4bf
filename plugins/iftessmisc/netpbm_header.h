// The heads of the formats of Netpbm: P1 to P6, P7 (PAM), and the floating-point PF and Pf. Format:
// the manual pages pbm(5), pgm(5), ppm(5), pam(5) and pfm(5).
#pragma once

#include <cstdint>
#include <optional>

#include "plugins/iftessmisc/byte_input.h"

namespace tessary::misc {

struct NetpbmHeader {
    char kind = 0;  // '1' to '7', 'F' or 'f'
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t depth = 1;     // samples of a pixel
    uint32_t most = 1;      // the value of full light
    bool hasAlpha = false;  // the sample behind the colours
    bool areInks = false;   // cyan, magenta, yellow and black
    double scale = 1;       // of floating-point samples; below 0: the low byte comes first
    uint64_t pixelOffset = 0;

    bool IsPlain() const { return kind >= '1' && kind <= '3'; }
    bool IsFloat() const { return kind == 'F' || kind == 'f'; }
    bool IsBitmap() const { return kind == '1' || kind == '4'; }
    uint32_t Colors() const { return areInks ? 4 : depth - (hasAlpha ? 1 : 0) >= 3 ? 3 : 1; }
    unsigned SampleBytes() const { return most > 255 ? 2 : 1; }
    // Of a stored row, where it is not plain text.
    uint64_t RowBytes() const {
        if (kind == '4') return (uint64_t{width} + 7) / 8;
        return uint64_t{width} * depth * (IsFloat() ? 4 : SampleBytes());
    }
};

// Of the picture that begins where `input` stands, which is behind the head then. Nothing where it
// makes no sense.
std::optional<NetpbmHeader> ReadNetpbmHeader(ByteInput& input);

// Moves behind white space and comments.
void SkipNetpbmSpace(ByteInput& input);

// A number of digits there, of 0 to 999,999,999; -1 where there is none.
int64_t ReadNetpbmNumber(ByteInput& input);

bool IsNetpbmSpace(int byte);

}  // namespace tessary::misc
