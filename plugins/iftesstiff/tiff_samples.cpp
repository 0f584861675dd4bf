#include "plugins/iftesstiff/tiff_samples.h"

#include <tiff.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tessary::tiff {
namespace {

constexpr uint32_t kMost = 65535;

template <class Number>
Number NumberAt(const uint8_t* raw, size_t index) {
    Number number;
    std::memcpy(&number, raw + index * sizeof number, sizeof number);
    return number;
}

uint32_t Number24At(const uint8_t* raw, size_t index) {
    const uint8_t* const at = raw + index * 3;  // the low byte first, as this machine has it
    return at[0] | uint32_t{at[1]} << 8 | uint32_t{at[2]} << 16;
}

// A float of `exponent` and `fraction` bits below its sign, as IEEE 754 builds them.
float SmallFloat(uint32_t bits, int exponent, int fraction) {
    const uint32_t power = bits >> fraction & ((1U << exponent) - 1);
    const auto rest = static_cast<float>(bits & ((1U << fraction) - 1));
    const int bias = (1 << (exponent - 1)) - 1;
    const bool isNegative = (bits >> (exponent + fraction) & 1) != 0;
    const float size = power == 0 ? std::ldexp(rest, 1 - bias - fraction)
                                  : std::ldexp(rest + std::ldexp(1.0F, fraction),
                                               static_cast<int>(power) - bias - fraction);
    return isNegative ? -size : size;
}

uint16_t FromFloat(double value) {
    if (!(value > 0)) return 0;  // what is no number, too
    return static_cast<uint16_t>(std::lround(std::min(value, 1.0) * kMost));
}

void UnpackFloats(const uint8_t* raw, size_t count, uint16_t bits, uint16_t* out) {
    for (size_t i = 0; i < count; ++i) {
        switch (bits) {
            case 16:
                out[i] = FromFloat(SmallFloat(NumberAt<uint16_t>(raw, i), 5, 10));
                break;
            case 24:
                out[i] = FromFloat(SmallFloat(Number24At(raw, i), 7, 16));
                break;
            case 32:
                out[i] = FromFloat(double{NumberAt<float>(raw, i)});
                break;
            default:
                out[i] = FromFloat(NumberAt<double>(raw, i));
                break;
        }
    }
}

// The numbers' highest 16 bits.
void UnpackWide(const uint8_t* raw, size_t count, uint16_t bits, uint16_t* out) {
    for (size_t i = 0; i < count; ++i) {
        out[i] = bits == 16   ? NumberAt<uint16_t>(raw, i)
                 : bits == 24 ? static_cast<uint16_t>(Number24At(raw, i) >> 8)
                 : bits == 32 ? static_cast<uint16_t>(NumberAt<uint32_t>(raw, i) >> 16)
                              : static_cast<uint16_t>(NumberAt<uint64_t>(raw, i) >> 48);
    }
}

}  // namespace

void UnpackIndexes(const uint8_t* raw, size_t count, uint16_t bits, uint16_t* out) {
    if (bits == 8) {
        std::copy(raw, raw + count, out);
    } else if (bits == 16) {
        UnpackWide(raw, count, bits, out);
    } else {
        uint32_t kept = 0;
        unsigned have = 0;
        for (size_t i = 0; i < count; ++i) {
            for (; have < bits; have += 8)
                kept = kept << 8 | *raw++;
            have -= bits;
            out[i] = static_cast<uint16_t>(kept >> have & ((1U << bits) - 1));
        }
    }
}

void UnpackSamples(const uint8_t* raw, size_t count, uint16_t bits, uint16_t format,
                   uint16_t* out) {
    if (format == SAMPLEFORMAT_IEEEFP) return UnpackFloats(raw, count, bits, out);
    if (bits >= 16) {
        UnpackWide(raw, count, bits, out);
    } else {
        UnpackIndexes(raw, count, bits, out);
        const unsigned known = std::max<unsigned>(bits, 1);
        const uint32_t most = (1U << known) - 1;
        const uint32_t least = format == SAMPLEFORMAT_INT ? 1U << (known - 1) : 0;
        for (size_t i = 0; i < count; ++i)
            out[i] = static_cast<uint16_t>(((out[i] ^ least) * kMost + most / 2) / most);
        return;
    }
    if (format != SAMPLEFORMAT_INT) return;
    for (size_t i = 0; i < count; ++i)
        out[i] ^= 0x8000;
}

}  // namespace tessary::tiff
