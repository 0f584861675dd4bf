#include "helpers/dib/pixel_decoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "helpers/dib/channel_masks.h"
#include "helpers/dib/plain_form.h"
#include "helpers/dib/run_length.h"

namespace tessary::dib {
namespace {

// Channels of 64-bit pixels: linear light as a fixed-point number with 13 bits behind the point, of
// which the range from 0 to 1 can be shown.
class LinearLight {
  public:
    LinearLight() {
        for (size_t value = 0; value < bytes_.size(); ++value) {
            const double light = static_cast<double>(value) / kOne;
            const double encoded =
                light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
            bytes_[value] = static_cast<uint8_t>(std::lround(encoded * 255));
        }
    }
    uint8_t operator[](int16_t value) const {
        return bytes_[static_cast<size_t>(std::clamp<int>(value, 0, kOne))];
    }

  private:
    static constexpr int kOne = 1 << 13;
    std::array<uint8_t, kOne + 1> bytes_{};
};

const LinearLight& TheLinearLight() {
    static const LinearLight light;
    return light;
}

// Turns pixels that the plain form lacks into those it has.
class PixelConverter {
  public:
    explicit PixelConverter(const SourceFormat& source)
        : bitCount_(source.bitCount),
          hasAlpha_(source.masks.alpha != 0),
          blue_(source.masks.blue),
          green_(source.masks.green),
          red_(source.masks.red),
          alpha_(source.masks.alpha) {}

    // Converts `count` pixels from a whole byte of the source on to `to`, a whole byte as well.
    void Convert(const uint8_t* from, size_t count, uint8_t* to) const {
        switch (bitCount_) {
            case 2:
                return WidenIndexes(from, count, to);
            case 16:
                return hasAlpha_ ? Widen<2, 4>(from, count, to) : Widen<2, 3>(from, count, to);
            case 24:
                return hasAlpha_ ? Widen<3, 4>(from, count, to) : Widen<3, 3>(from, count, to);
            case 64:
                return Compand(from, count, to);
            default:
                return Widen<4, 4>(from, count, to);
        }
    }

  private:
    static void WidenIndexes(const uint8_t* from, size_t count, uint8_t* to) {
        for (size_t x = 0; x < count; x += 2) {
            const int pair = from[x / 4] >> (4 - x % 4 * 2) & 0xF;
            to[x / 2] = static_cast<uint8_t>((pair & 0xC) << 2 | (pair & 0x3));
        }
    }

    // Blue, green, red and a fourth channel in 16 bits each.
    static void Compand(const uint8_t* from, size_t count, uint8_t* to) {
        const LinearLight& brightness = TheLinearLight();
        for (size_t x = 0; x < count; ++x, from += 8, to += 4) {
            std::array<int16_t, 4> pixel;
            std::memcpy(pixel.data(), from, sizeof(pixel));
            for (size_t channel = 0; channel < 3; ++channel)
                to[channel] = brightness[pixel[channel]];
            to[3] = 0xFF;
        }
    }

    template <int kFrom, int kTo>
    void Widen(const uint8_t* from, size_t count, uint8_t* to) const {
        for (size_t x = 0; x < count; ++x, from += kFrom, to += kTo) {
            uint32_t pixel = 0;
            std::memcpy(&pixel, from, kFrom);
            to[0] = blue_(pixel);
            to[1] = green_(pixel);
            to[2] = red_(pixel);
            if constexpr (kTo == 4) to[3] = alpha_(pixel);
        }
    }

    uint16_t bitCount_;
    bool hasAlpha_;
    ChannelReader blue_;
    ChannelReader green_;
    ChannelReader red_;
    ChannelReader alpha_;
};

// Reads one row in pieces that start on a whole byte, and converts each. False when the data end.
bool ConvertRow(const PixelConverter& converter, const SourceFormat& source, ByteStream& stream,
                uint16_t targetBits, uint8_t* row) {
    constexpr size_t kPiece = 4096;  // pixels
    std::array<uint8_t, kPiece * 8> piece;
    const auto width = static_cast<size_t>(source.width);
    for (size_t x = 0; x < width; x += kPiece) {
        const size_t pixels = std::min(kPiece, width - x);
        const auto wanted = static_cast<size_t>(RowBytes(pixels, source.bitCount));
        const size_t got = stream.Read({piece.data(), wanted});
        converter.Convert(piece.data(), std::min(pixels, got * 8 / source.bitCount),
                          row + x * targetBits / 8);
        if (got < wanted) return false;
    }
    return true;
}

}  // namespace

DibError DecodePixels(const SourceFormat& source, uint64_t sourceStride, ByteStream& stream,
                      std::span<uint8_t> bits, bool& isWhole) {
    const PlainForm plain = PlainFormOf(source);
    const auto height = static_cast<size_t>(source.height);
    const TargetRows rows = {bits, bits.size() / height, source.width, source.height,
                             source.topDown};
    const auto rowBytes =
        static_cast<size_t>(RowBytes(static_cast<uint64_t>(source.width), source.bitCount));

    if (plain.sameBits && !source.topDown && sourceStride == rows.stride) {
        const size_t got = stream.Read(bits);
        std::memset(bits.data() + got, 0, bits.size() - got);
        // Nobody misses the padding of the last row.
        isWhole = bits.size() - got <= rows.stride - rowBytes;
        return stream.Error();
    }

    std::memset(bits.data(), 0, bits.size());
    if (source.encoding != Encoding::kRaw) {
        isWhole = DecodeRunLength(source.encoding, stream, rows);
        return stream.Error();
    }
    const PixelConverter converter(source);
    for (int32_t y = 0; y < source.height; ++y) {
        const auto row = rows.Row(y);
        isWhole = plain.sameBits ? stream.Read(row.first(rowBytes)) == rowBytes
                                 : ConvertRow(converter, source, stream, BitsPerPixel(plain.format),
                                              row.data());
        if (!isWhole) break;
        stream.Skip(sourceStride - rowBytes);
    }
    return stream.Error();
}

}  // namespace tessary::dib
