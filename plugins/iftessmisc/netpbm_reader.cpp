// PBM, PGM, PPM and PAM; PFM is decoded in pfm_reader.h.
#include <algorithm>
#include <cstring>

#include "plugins/common/palette.h"
#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/netpbm_header.h"
#include "plugins/iftessmisc/pfm_reader.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;

class NetpbmReader final : public PictureReader {
  public:
    NetpbmReader(dib::ByteSource& source, const NetpbmHeader& header)
        : source_(source), header_(header), input_(source, header.pixelOffset) {
        outline_.width = header.width;
        outline_.height = header.height;
        const bool areColors = header.Colors() >= 3;
        outline_.pixels = areColors ? (header.hasAlpha ? Pixels::kBgra : Pixels::kBgr)
                                    : (header.hasAlpha ? Pixels::kGreyAlpha : Pixels::kIndexed);
        if (outline_.pixels == Pixels::kIndexed) {
            outline_.tableBits = header.most == 1 ? 1 : 8;
            outline_.palette = codec::GreyPalette(outline_.tableBits);
            // A set bit is ink.
            if (header.IsBitmap()) std::swap(outline_.palette[0], outline_.palette[1]);
        }
        levels_.resize(size_t{header.most} + 1);
        for (uint32_t i = 0; i <= header.most; ++i) {
            const bool isIndex = outline_.tableBits == 1;
            levels_[i] = isIndex ? static_cast<uint8_t>(i) : Scaled(i, header.most);
        }
    }

    uint32_t ReadRow(uint32_t, uint8_t* row) override {
        if (header_.IsPlain()) return ReadPlainRow(row);
        stored_.resize(static_cast<size_t>(std::min(header_.RowBytes(), source_.Size())));
        const size_t got = input_.Read(stored_);
        if (header_.kind == '4') {
            const size_t there = std::min<size_t>(header_.width, got * 8);
            for (size_t x = 0; x < there; ++x)
                row[x] = stored_[x / 8] >> (7 - x % 8) & 1;
            return static_cast<uint32_t>(there);
        }
        const size_t pixelBytes = size_t{header_.depth} * header_.SampleBytes();
        const size_t there = got / pixelBytes;
        const unsigned bytes = header_.SampleBytes();
        const uint8_t* in = stored_.data();
        for (size_t x = 0; x < there; ++x, in += pixelBytes)
            row = PutPixel(row, [&](unsigned i) {
                return bytes == 2 ? uint32_t{Big16(in + 2 * size_t{i})} : uint32_t{in[i]};
            });
        return static_cast<uint32_t>(there);
    }

    uint64_t Position() const { return input_.Position(); }

  private:
    // Too large a sample counts as full light.
    uint8_t LevelOf(uint32_t sample) const { return levels_[std::min(sample, header_.most)]; }

    template <class SampleAt>
    uint8_t* PutPixel(uint8_t* out, SampleAt sampleAt) const {
        if (header_.areInks) {
            const unsigned light = 255u - LevelOf(sampleAt(3));
            for (unsigned i = 3; i-- > 0;)
                *out++ = Scaled((255u - LevelOf(sampleAt(i))) * light, 255 * 255);
            if (header_.hasAlpha) *out++ = LevelOf(sampleAt(4));
            return out;
        }
        if (header_.Colors() >= 3) {
            for (unsigned i = 3; i-- > 0;)
                *out++ = LevelOf(sampleAt(i));
            if (header_.hasAlpha) *out++ = LevelOf(sampleAt(3));
            return out;
        }
        *out++ = LevelOf(sampleAt(0));
        if (header_.hasAlpha) *out++ = LevelOf(sampleAt(1));
        return out;
    }

    uint32_t ReadPlainRow(uint8_t* row) {
        uint32_t samples[5] = {};  // as many as PutPixel could ask for
        for (uint32_t x = 0; x < header_.width; ++x) {
            for (uint32_t i = 0; i < header_.depth; ++i) {
                SkipNetpbmSpace(input_);
                if (header_.kind == '1') {
                    // Digits may stand without a space between them.
                    const int digit = input_.Peek();
                    if (digit != '0' && digit != '1') return x;
                    samples[i] = static_cast<uint32_t>(input_.Byte() - '0');
                    continue;
                }
                const int64_t number = ReadNetpbmNumber(input_);
                if (number < 0) return x;
                samples[i] = static_cast<uint32_t>(number);
            }
            row = PutPixel(row, [&](unsigned i) { return samples[i]; });
        }
        return header_.width;
    }

    dib::ByteSource& source_;
    const NetpbmHeader header_;
    ByteInput input_;
    std::vector<uint8_t> levels_;
    std::vector<uint8_t> stored_;
};

// 'P', the kind, and what must follow it; of P7 another format has a space there.
bool IsNetpbm(std::span<const uint8_t> header) {
    if (header.size() < 3 || header[0] != 'P') return false;
    const uint8_t kind = header[1];
    if (kind == '7') return header[2] == '\n' || header[2] == '\r';
    if (!(kind >= '1' && kind <= '6') && kind != 'F' && kind != 'f') return false;
    if (!IsNetpbmSpace(header[2]) && header[2] != '#') return false;
    bool isComment = false;
    for (const uint8_t byte : header.subspan(2)) {
        if (isComment) {
            isComment = byte != '\n' && byte != '\r';
        } else if (byte == '#') {
            isComment = true;
        } else if (!IsNetpbmSpace(byte)) {
            return byte >= '0' && byte <= '9';
        }
    }
    return true;
}

Result OpenNetpbm(dib::ByteSource& source, codec::Progress&,
                  std::unique_ptr<PictureReader>& reader) {
    ByteInput input(source);
    const auto header = ReadNetpbmHeader(input);
    if (!header) return Result::kBrokenData;
    if (header->IsFloat()) {
        reader = MakePfmReader(source, *header);
    } else {
        reader = std::make_unique<NetpbmReader>(source, *header);
    }
    return Result::kSuccess;
}

// Where the next picture may begin; nothing where this one is cut short.
std::optional<uint64_t> EndOf(dib::ByteSource& source, const NetpbmHeader& header) {
    if (!header.IsPlain()) {
        const uint64_t there = source.Size() - std::min(header.pixelOffset, source.Size());
        if (header.RowBytes() > there / header.height) return std::nullopt;
        return header.pixelOffset + header.RowBytes() * header.height;
    }
    // A sample takes a byte at least.
    if (uint64_t{header.width} * header.height > source.Size()) return std::nullopt;
    NetpbmReader reader(source, header);
    std::vector<uint8_t> row(size_t{header.width} * BytesOf(reader.Form().pixels));
    for (uint32_t y = 0; y < header.height; ++y)
        if (reader.ReadRow(y, row.data()) < header.width) return std::nullopt;
    return reader.Position();
}

std::vector<Page> NetpbmPages(dib::ByteSource& source, size_t most) {
    std::vector<Page> pages{{}};
    uint64_t start = 0;
    while (pages.size() < most) {
        ByteInput input(source, start, 512);
        const auto header = ReadNetpbmHeader(input);
        if (!header || header->IsFloat()) break;
        const auto end = EndOf(source, *header);
        if (!end) break;
        input.Seek(*end);
        while (IsNetpbmSpace(input.Peek()))
            input.Byte();
        start = input.Position();
        if (input.Byte() != 'P') break;
        const int kind = input.Byte();
        if (kind < '1' || kind > '7') break;
        input.Seek(start);
        if (!ReadNetpbmHeader(input)) break;
        pages.back().size = start - pages.back().offset;
        pages.push_back({.offset = start});
    }
    return pages;
}

}  // namespace

constinit const Format kNetpbm{L"PNM", IsNetpbm, OpenNetpbm, NetpbmPages};

}  // namespace tessary::misc
