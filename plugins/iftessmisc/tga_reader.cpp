// TGA: pictures of Truevision's boards, of games and of renderers.
#include <algorithm>
#include <array>
#include <cstring>

#include "plugins/common/palette.h"
#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/stored_number.h"
#include "plugins/iftessmisc/tga_header.h"

namespace tessary::misc {
namespace {

using codec::Result;

constexpr size_t kMostPixelBytes = 4;
using Pixel = std::array<uint8_t, kMostPixelBytes>;  // blue, green, red, alpha

// Colours as they are stored, of 2 bytes (5 bits each, and one of alpha) or 3 or 4.
Pixel ColorOf(const uint8_t* stored, unsigned bytes) {
    if (bytes != 2)
        return {stored[0], stored[1], stored[2], bytes == 4 ? stored[3] : uint8_t{0xFF}};
    const unsigned value = Little16(stored);
    // The high bits once more as the low ones, as everybody does.
    const auto level = [](unsigned five) { return static_cast<uint8_t>(five << 3 | five >> 2); };
    return {level(value & 31), level(value >> 5 & 31), level(value >> 10 & 31),
            (value & 0x8000) != 0 ? uint8_t{0xFF} : uint8_t{0}};
}

void Divide(Pixel& pixel) {
    const unsigned alpha = pixel[3];
    if (alpha == 0) return;
    for (size_t i = 0; i < 3; ++i)
        pixel[i] = static_cast<uint8_t>(std::min(255u, (pixel[i] * 255 + alpha / 2) / alpha));
}

// The pixels of a file as they are stored, one row after the other.
class StoredPixels {
  public:
    StoredPixels(dib::ByteSource& source, const TgaHeader& header)
        : input_(source, header.PixelOffset()),
          bytes_(header.PixelBytes()),
          isEncoded_(header.IsEncoded()) {}

    // How many of `count` pixels there are.
    size_t Read(uint8_t* out, size_t count) {
        if (!isEncoded_) return input_.Read({out, count * bytes_}) / bytes_;
        size_t done = 0;
        while (done < count) {
            if (left_ == 0 && !NextPacket()) break;
            const size_t part = std::min(left_, count - done);
            uint8_t* to = out + done * bytes_;
            if (isRun_) {
                for (size_t i = 0; i < part; ++i, to += bytes_)
                    std::memcpy(to, value_.data(), bytes_);
            } else {
                const size_t got = input_.Read({to, part * bytes_}) / bytes_;
                if (got < part) return done + got;
            }
            done += part;
            left_ -= part;
        }
        return done;
    }

  private:
    // Packets may go on in the next row.
    bool NextPacket() {
        const int head = input_.Byte();
        if (head < 0) return false;
        isRun_ = (head & 0x80) != 0;
        if (isRun_ && input_.Read(std::span(value_).first(bytes_)) != bytes_) return false;
        left_ = static_cast<size_t>(head & 0x7F) + 1;
        return true;
    }

    ByteInput input_;
    size_t bytes_;
    bool isEncoded_;
    bool isRun_ = false;
    size_t left_ = 0;  // of the packet
    Pixel value_{};
};

class TgaReader final : public PictureReader {
  public:
    TgaReader(dib::ByteSource& source, const TgaHeader& header)
        : source_(source), header_(header), alpha_(AlphaOfTga(source)), pixels_(source, header) {
        outline_.width = header.width;
        outline_.height = header.height;
        const bool isTop = (header.descriptor & 0x20) != 0;
        const bool isRight = (header.descriptor & 0x10) != 0;
        outline_.orientation = isTop ? (isRight ? 2 : 1) : (isRight ? 3 : kBottomUp);
        if (header.IsMapped()) ReadMap();
        outline_.pixels = PixelsWith(false);
        if (header.IsGrey()) outline_.palette = codec::GreyPalette(8);
        if (UsesTable()) SetPalette();
    }

    // Of an alpha that nothing but the header tells of, all of it clear, nobody has thought.
    bool Prepare(codec::Progress& progress) override {
        if (UsesTable() || !MayHaveAlpha()) return true;
        if (alpha_ == TgaAlpha::kNotSaid) {
            StoredPixels all(source_, header_);
            row_.resize(RowBytes());
            bool isClear = true;
            for (uint32_t y = 0; y < header_.height && isClear; ++y) {
                if (!progress.Report(0, 1)) return false;
                const size_t count = all.Read(row_.data(), header_.width);
                for (size_t x = 0; x < count && isClear; ++x)
                    isClear = AlphaAt(&row_[x * header_.PixelBytes()]) == 0;
                if (count < header_.width) break;
            }
            if (isClear) return true;
        }
        outline_.pixels = PixelsWith(true);
        return true;
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        const unsigned stored = header_.PixelBytes();
        if (stored == BytesOf(outline_.pixels) && alpha_ != TgaAlpha::kMultiplied && stored != 2) {
            return static_cast<uint32_t>(pixels_.Read(row, header_.width));
        }
        row_.resize(RowBytes());
        const size_t count = pixels_.Read(row_.data(), header_.width);
        if (header_.IsGrey()) {
            PutGreys(row, count);
        } else {
            PutColors(row, count);
        }
        return static_cast<uint32_t>(count);
    }

  private:
    size_t RowBytes() const { return size_t{header_.width} * header_.PixelBytes(); }
    bool UsesTable() const { return header_.IsMapped() && header_.bits == 8; }

    bool MayHaveAlpha() const {
        const unsigned bits = header_.IsMapped() ? header_.mapBits : header_.bits;
        if (alpha_ == TgaAlpha::kNone || (bits != 16 && bits != 32)) return false;
        // Many programs write 32 bits and leave the count of alpha's at 0.
        return alpha_ != TgaAlpha::kNotSaid || header_.AttributeBits() != 0 || bits == 32;
    }

    Pixels PixelsWith(bool hasAlpha) const {
        if (UsesTable()) return Pixels::kIndexed;
        if (header_.IsGrey()) return hasAlpha ? Pixels::kGreyAlpha : Pixels::kIndexed;
        return hasAlpha ? Pixels::kBgra : Pixels::kBgr;
    }

    // Colours by the numbers that pixels have; what the file does not hold is black.
    void ReadMap() {
        const unsigned bytes = header_.EntryBytes();
        std::vector<uint8_t> stored(size_t{header_.mapLength} * bytes);
        const size_t got = source_.ReadAt(header_.MapOffset(), stored).value_or(0) / bytes;
        const size_t numbers = size_t{1} << (UsesTable() ? 8 : 16);
        map_.assign(numbers, {0, 0, 0, 0xFF});
        for (size_t i = 0; i < got && header_.mapFirst + i < numbers; ++i)
            map_[header_.mapFirst + i] = ColorOf(&stored[i * bytes], bytes);
    }

    void SetPalette() {
        std::vector<uint8_t> alphas;
        bool isClear = true, isOpaque = true;
        for (size_t i = 0; i < map_.size(); ++i) {
            Pixel color = map_[i];
            if (MayHaveAlpha() && alpha_ == TgaAlpha::kMultiplied) Divide(color);
            outline_.palette.push_back({color[0], color[1], color[2], 0});
            alphas.push_back(color[3]);
            const bool isOfFile = i >= header_.mapFirst && i - header_.mapFirst < header_.mapLength;
            isClear = isClear && (!isOfFile || color[3] == 0);
            isOpaque = isOpaque && color[3] == 0xFF;
        }
        const bool isMeant = alpha_ != TgaAlpha::kNotSaid || !isClear;
        if (MayHaveAlpha() && isMeant && !isOpaque) outline_.paletteAlpha = std::move(alphas);
    }

    uint8_t AlphaAt(const uint8_t* stored) const {
        if (header_.IsGrey()) return stored[1];
        return header_.IsMapped() ? map_[Little16(stored)][3]
                                  : ColorOf(stored, header_.PixelBytes())[3];
    }

    void PutGreys(uint8_t* row, size_t count) const {
        const bool hasAlpha = outline_.pixels == Pixels::kGreyAlpha;
        for (size_t x = 0; x < count; ++x) {
            Pixel pixel{row_[2 * x], 0, 0, row_[2 * x + 1]};
            if (hasAlpha && alpha_ == TgaAlpha::kMultiplied) Divide(pixel);
            *row++ = pixel[0];
            if (hasAlpha) *row++ = pixel[3];
        }
    }

    void PutColors(uint8_t* row, size_t count) const {
        const unsigned stored = header_.PixelBytes();
        const bool divides = outline_.pixels == Pixels::kBgra && alpha_ == TgaAlpha::kMultiplied;
        const size_t bytes = BytesOf(outline_.pixels);
        const uint8_t* in = row_.data();
        for (size_t x = 0; x < count; ++x, in += stored, row += bytes) {
            Pixel pixel = header_.IsMapped() ? map_[Little16(in)] : ColorOf(in, stored);
            if (divides) Divide(pixel);
            std::memcpy(row, pixel.data(), bytes);
        }
    }

    dib::ByteSource& source_;
    const TgaHeader header_;
    const TgaAlpha alpha_;
    StoredPixels pixels_;
    std::vector<Pixel> map_;
    std::vector<uint8_t> row_;
};

bool IsTga(std::span<const uint8_t> header) {
    return ReadTgaHeader(header).has_value();
}

Result OpenTga(dib::ByteSource& source, codec::Progress&, std::unique_ptr<PictureReader>& reader) {
    std::array<uint8_t, TgaHeader::kSize> bytes{};
    const size_t got = source.ReadAt(0, bytes).value_or(0);
    const auto header = ReadTgaHeader(std::span(bytes).first(got), HasTgaSignature(source));
    if (!header) return Result::kUnknownFormat;
    reader = std::make_unique<TgaReader>(source, *header);
    return Result::kSuccess;
}

}  // namespace

constinit const Format kTga{L"TGA", IsTga, OpenTga};

}  // namespace tessary::misc
