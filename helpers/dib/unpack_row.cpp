#include "helpers/dib/unpack_row.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <numeric>

namespace tessary::dib {
namespace {

static_assert(std::endian::native == std::endian::little);

constexpr uint32_t kOpaque = 0xFF000000u;

// Widens the low `bits` bits (5 or 6) of `value` to 8 by repeating the top ones below.
constexpr uint32_t Widen(uint32_t value, int bits) {
    const uint32_t channel = value & ((1u << bits) - 1);
    return channel << (8 - bits) | channel >> (2 * bits - 8);
}

// The colour of a 16-bit pixel. Every bit of the result is one bit of the pixel, so the colours of
// its two bytes taken alone combine by OR.
constexpr uint32_t Color16(uint32_t pixel, int greenBits) {
    return Widen(pixel, 5) | Widen(pixel >> 5, greenBits) << 8 |
           Widen(pixel >> (5 + greenBits), 5) << 16 | kOpaque;
}

// Writes one colour as 3 or 4 bytes.
template <int kBytes>
void Put(uint8_t* out, uint32_t color) {
    if constexpr (kBytes == 4) {
        std::memcpy(out, &color, 4);
    } else {
        out[0] = static_cast<uint8_t>(color);
        out[1] = static_cast<uint8_t>(color >> 8);
        out[2] = static_cast<uint8_t>(color >> 16);
    }
}

// Unpacks `width` palette indexes of kBits bits each.
template <int kBytes, int kBits>
void UnpackIndexes(const uint8_t* in, size_t width, const std::array<uint32_t, 256>& colors,
                   uint8_t* out) {
    constexpr size_t kPerByte = 8 / kBits;
    constexpr uint32_t kMask = (1u << kBits) - 1;
    const size_t wholeBytes = width / kPerByte;
    for (size_t i = 0; i < wholeBytes; ++i) {
        const uint32_t byte = in[i];
        for (size_t p = 0; p < kPerByte; ++p) {
            Put<kBytes>(out, colors[byte >> (8 - kBits * (p + 1)) & kMask]);
            out += kBytes;
        }
    }
    for (size_t p = 0; p < width % kPerByte; ++p) {
        Put<kBytes>(out, colors[in[wholeBytes] >> (8 - kBits * (p + 1)) & kMask]);
        out += kBytes;
    }
}

constexpr uint8_t Over(int backdrop, uint8_t sample, uint8_t alpha) {
    return static_cast<uint8_t>((sample * alpha + backdrop * (255 - alpha) + 127) / 255);
}

bool IsAllTransparent(const DibView& view) {
    for (int32_t y = 0; y < view.Height(); ++y) {
        const auto row = view.Row(y);
        for (size_t alpha = 3; alpha < row.size(); alpha += 4) {
            if (row[alpha] != 0) return false;
        }
    }
    return true;
}

}  // namespace

RowReader::RowReader(const DibView& view, Backdrop backdrop)
    : format_(view.Format()), width_(static_cast<size_t>(view.Width())), backdrop_(backdrop) {
    allTransparent_ = format_ == PixelFormat::kBgra32 && IsAllTransparent(view);
    if (format_ == PixelFormat::kRgb555 || format_ == PixelFormat::kRgb565) {
        const int greenBits = format_ == PixelFormat::kRgb565 ? 6 : 5;
        for (uint32_t byte = 0; byte < 256; ++byte) {
            low_[byte] = Color16(byte, greenBits);
            high_[byte] = Color16(byte << 8, greenBits);
        }
        return;
    }
    low_.fill(kOpaque);
    size_t index = 0;
    for (const PaletteEntry& entry : view.Palette()) {
        low_[index++] = entry.blue | entry.green << 8 | entry.red << 16 | kOpaque;
    }
}

template <int kBytes>
void RowReader::Unpack(std::span<const uint8_t> row, std::span<uint8_t> out) const {
    assert(out.size() >= width_ * kBytes);
    const uint8_t* in = row.data();
    uint8_t* to = out.data();
    switch (format_) {
        case PixelFormat::kIndexed1:
            UnpackIndexes<kBytes, 1>(in, width_, low_, to);
            break;
        case PixelFormat::kIndexed4:
            UnpackIndexes<kBytes, 4>(in, width_, low_, to);
            break;
        case PixelFormat::kIndexed8:
            UnpackIndexes<kBytes, 8>(in, width_, low_, to);
            break;
        case PixelFormat::kRgb555:
        case PixelFormat::kRgb565:
            for (size_t x = 0; x < width_; ++x) {
                Put<kBytes>(to + x * kBytes, low_[in[x * 2]] | high_[in[x * 2 + 1]]);
            }
            break;
        case PixelFormat::kBgr24:
            if constexpr (kBytes == 3) {
                std::memcpy(to, in, width_ * 3);
            } else {
                for (size_t x = 0; x < width_; ++x) {
                    const uint8_t* p = in + x * 3;
                    Put<4>(to + x * 4, p[0] | p[1] << 8 | p[2] << 16 | kOpaque);
                }
            }
            break;
        case PixelFormat::kBgra32:
            if (kBytes == 3 && !allTransparent_) {
                const int backdrop = static_cast<int>(backdrop_);
                for (size_t x = 0; x < width_; ++x) {
                    const uint8_t* p = in + x * 4;
                    for (size_t channel = 0; channel < 3; ++channel)
                        to[x * 3 + channel] = Over(backdrop, p[channel], p[3]);
                }
                break;
            }
            [[fallthrough]];
        case PixelFormat::kBgrx32:
            if constexpr (kBytes == 4) {
                std::memcpy(to, in, width_ * 4);
            } else {
                for (size_t x = 0; x < width_; ++x)
                    std::memcpy(to + x * 3, in + x * 4, 3);
            }
            break;
    }
}

void RowReader::Pick(std::span<const uint8_t> row, std::span<const int32_t> columns,
                     uint32_t* pixels) const {
    const uint8_t* const in = row.data();
    const auto pick = [&](auto colorOf) {
        for (const int32_t column : columns)
            *pixels++ = colorOf(static_cast<size_t>(column));
    };
    switch (format_) {
        case PixelFormat::kIndexed1:
            return pick([&](size_t x) { return low_[in[x / 8] >> (7 - x % 8) & 1u]; });
        case PixelFormat::kIndexed4:
            return pick([&](size_t x) { return low_[in[x / 2] >> (x % 2 == 0 ? 4 : 0) & 15u]; });
        case PixelFormat::kIndexed8:
            return pick([&](size_t x) { return low_[in[x]]; });
        case PixelFormat::kRgb555:
        case PixelFormat::kRgb565:
            return pick([&](size_t x) { return low_[in[x * 2]] | high_[in[x * 2 + 1]]; });
        case PixelFormat::kBgr24:
            return pick([&](size_t x) {
                const uint8_t* const p = in + x * 3;
                return p[0] | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
                       kOpaque;
            });
        case PixelFormat::kBgra32:
            if (!allTransparent_) {
                return pick([&](size_t x) {
                    const uint8_t* const p = in + x * 4;
                    return Over(0, p[0], p[3]) | static_cast<uint32_t>(Over(0, p[1], p[3])) << 8 |
                           static_cast<uint32_t>(Over(0, p[2], p[3])) << 16 |
                           static_cast<uint32_t>(p[3]) << 24;
                });
            }
            [[fallthrough]];
        case PixelFormat::kBgrx32:
            return pick([&](size_t x) {
                uint32_t color = 0;
                std::memcpy(&color, in + x * 4, 4);
                return color | kOpaque;
            });
    }
}

size_t RowReader::PlainBytes() const {
    if (format_ == PixelFormat::kBgr24) return 3;
    return BitsPerPixel(format_) == 32 && !HasAlpha() ? 4 : 0;
}

void RowReader::PickRun(std::span<const uint8_t> row, size_t first, size_t count,
                        uint32_t* pixels) const {
    const size_t bytes = PlainBytes();
    const uint8_t* in = row.data() + first * bytes;
    if (bytes == 3) {
        size_t x = 0;
        for (; x + 4 <= count; x += 4, in += 12) {
            uint32_t packed[3];
            std::memcpy(packed, in, sizeof packed);
            pixels[x] = packed[0] | kOpaque;
            pixels[x + 1] = packed[0] >> 24 | packed[1] << 8 | kOpaque;
            pixels[x + 2] = packed[1] >> 16 | packed[2] << 16 | kOpaque;
            pixels[x + 3] = packed[2] >> 8 | kOpaque;
        }
        for (; x < count; ++x, in += 3)
            Put<4>(reinterpret_cast<uint8_t*>(pixels + x),
                   in[0] | in[1] << 8 | in[2] << 16 | kOpaque);
        return;
    }
    if (bytes == 4) {
        std::memcpy(pixels, in, count * bytes);
        for (size_t x = 0; x < count; ++x)
            pixels[x] |= kOpaque;
        return;
    }
    std::array<int32_t, 256> columns;
    for (size_t done = 0; done < count; done += columns.size()) {
        const std::span<int32_t> some(columns.data(), std::min(columns.size(), count - done));
        std::iota(some.begin(), some.end(), static_cast<int32_t>(first + done));
        Pick(row, some, pixels + done);
    }
}

void RowReader::Row(std::span<const uint8_t> row, std::span<uint8_t> bgr) const {
    Unpack<3>(row, bgr);
}

void RowReader::RowBgra(std::span<const uint8_t> row, std::span<uint8_t> bgra) const {
    Unpack<4>(row, bgra);
}

}  // namespace tessary::dib
