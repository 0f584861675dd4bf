#include "helpers/dib/run_length.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tessary::dib {
namespace {

// Second byte of a code whose first is 0; from 3 on it counts pixels that follow unencoded.
constexpr int kEndOfLine = 0;
constexpr int kEndOfBitmap = 1;
constexpr int kDelta = 2;

// How each encoding stores pixels: the bytes of a run's value, those of `count` unencoded pixels,
// and writing `count` pixels from pixel x on.
struct Rle8 {
    static constexpr size_t kRunBytes = 1;
    static constexpr size_t LiteralBytes(size_t count) { return count; }
    static void PutRun(uint8_t* row, size_t x, size_t count, const uint8_t* value) {
        std::memset(row + x, value[0], count);
    }
    static void PutLiteral(uint8_t* row, size_t x, size_t count, const uint8_t* pixels) {
        std::memcpy(row + x, pixels, count);
    }
};

struct Rle4 {
    static constexpr size_t kRunBytes = 1;
    static constexpr size_t LiteralBytes(size_t count) { return (count + 1) / 2; }
    static void Put(uint8_t* row, size_t x, uint8_t index) {
        uint8_t& byte = row[x / 2];
        byte =
            static_cast<uint8_t>(x % 2 == 0 ? (byte & 0x0F) | index << 4 : (byte & 0xF0) | index);
    }
    static void PutRun(uint8_t* row, size_t x, size_t count, const uint8_t* value) {
        for (size_t i = 0; i < count; ++i) {
            Put(row, x + i, i % 2 == 0 ? value[0] >> 4 : value[0] & 0x0F);
        }
    }
    static void PutLiteral(uint8_t* row, size_t x, size_t count, const uint8_t* pixels) {
        for (size_t i = 0; i < count; ++i) {
            Put(row, x + i, i % 2 == 0 ? pixels[i / 2] >> 4 : pixels[i / 2] & 0x0F);
        }
    }
};

struct Rle24 {
    static constexpr size_t kRunBytes = 3;
    static constexpr size_t LiteralBytes(size_t count) { return count * 3; }
    static void PutRun(uint8_t* row, size_t x, size_t count, const uint8_t* value) {
        for (size_t i = 0; i < count; ++i)
            std::memcpy(row + (x + i) * 3, value, 3);
    }
    static void PutLiteral(uint8_t* row, size_t x, size_t count, const uint8_t* pixels) {
        std::memcpy(row + x * 3, pixels, count * 3);
    }
};

// Whether nothing but the end mark follows, or not even that: some writers leave it out.
bool IsAtEnd(ByteStream& stream) {
    const int count = stream.Next();
    return count < 0 || (count == 0 && stream.Next() == kEndOfBitmap);
}

template <typename Pixels>
bool Decode(ByteStream& stream, const TargetRows& rows) {
    const auto width = static_cast<size_t>(rows.width);
    std::array<uint8_t, Pixels::LiteralBytes(255) + 1> data;
    size_t x = 0;
    int32_t y = 0;
    bool hasGap = false;
    while (y < rows.height) {
        const int count = stream.Next();
        // Some writers leave the end mark out.
        if (count < 0) return x == width && y == rows.height - 1;
        uint8_t* row = rows.Row(y).data();
        if (count > 0) {
            if (stream.Read({data.data(), Pixels::kRunBytes}) < Pixels::kRunBytes) return false;
            const size_t run = std::min<size_t>(static_cast<size_t>(count), width - x);
            Pixels::PutRun(row, x, run, data.data());
            x += run;
            continue;
        }
        const int code = stream.Next();
        if (code < 0) return false;
        if (code == kEndOfBitmap) return true;
        if (code == kEndOfLine) {
            hasGap |= x < width;
            x = 0;
            ++y;
        } else if (code == kDelta) {
            const int right = stream.Next();
            const int down = stream.Next();
            if (down < 0) return false;
            x = std::min(x + static_cast<size_t>(right), width);
            y += down;
        } else {
            // Unencoded pixels fill up to an even count of bytes; a cut block still shows its part.
            const auto pixels = static_cast<size_t>(code);
            const size_t bytes = (Pixels::LiteralBytes(pixels) + 1) / 2 * 2;
            const size_t got = stream.Read({data.data(), bytes});
            std::memset(data.data() + got, 0, bytes - got);
            const size_t shown = std::min(pixels, width - x);
            Pixels::PutLiteral(row, x, shown, data.data());
            x += shown;
            if (got < Pixels::LiteralBytes(pixels)) return false;
        }
    }
    // Zeros in the place of lost data end one line after the other.
    return !hasGap || IsAtEnd(stream);
}

}  // namespace

bool DecodeRunLength(Encoding encoding, ByteStream& stream, const TargetRows& rows) {
    switch (encoding) {
        case Encoding::kRle4:
            return Decode<Rle4>(stream, rows);
        case Encoding::kRle8:
            return Decode<Rle8>(stream, rows);
        case Encoding::kRle24:
            return Decode<Rle24>(stream, rows);
        case Encoding::kRaw:
            break;
    }
    return true;
}

}  // namespace tessary::dib
