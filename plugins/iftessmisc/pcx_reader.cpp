// PCX, and DCX, which holds several of them. Format: ZSoft's Technical Reference Manual for PC
// Paintbrush.
#include <algorithm>
#include <array>

#include "plugins/common/exif.h"
#include "plugins/common/palette.h"
#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/format.h"
#include "plugins/iftessmisc/stored_number.h"

namespace tessary::misc {
namespace {

using codec::Result;
using dib::PaletteEntry;

constexpr size_t kHeaderSize = 128;
constexpr uint8_t kSignature = 0x0A;
constexpr size_t kHeaderColors = 16;        // in the header, three bytes each
constexpr size_t kTableSize = 1 + 256 * 3;  // at the end of the file, behind its mark
constexpr uint8_t kTableMark = 0x0C;
constexpr uint16_t kGreyKind = 2;

// What a file without a palette means: the colours of EGA boards.
constexpr std::array<uint32_t, 16> kEga{0x000000, 0x0000AA, 0x00AA00, 0x00AAAA, 0xAA0000, 0xAA00AA,
                                        0xAA5500, 0xAAAAAA, 0x555555, 0x5555FF, 0x55FF55, 0x55FFFF,
                                        0xFF5555, 0xFF55FF, 0xFFFF55, 0xFFFFFF};
// The same of CGA boards.
constexpr std::array<uint32_t, 4> kCga{0x000000, 0x00AAAA, 0xAA00AA, 0xAAAAAA};

constexpr PaletteEntry EntryOf(uint32_t rgb) {
    return {static_cast<uint8_t>(rgb), static_cast<uint8_t>(rgb >> 8),
            static_cast<uint8_t>(rgb >> 16), 0};
}

struct PcxHeader {
    uint8_t version;
    bool isEncoded;
    uint8_t bits;  // of a pixel in a plane
    uint8_t planes;
    uint32_t width, height;
    uint16_t xDots, yDots;  // per inch
    uint16_t rowBytes;      // of a plane
    uint16_t paletteKind;
    std::array<PaletteEntry, kHeaderColors> palette;

    unsigned PixelBits() const { return unsigned{bits} * planes; }
    bool HasTable() const { return PixelBits() <= 8; }
    size_t LineBytes() const { return size_t{rowBytes} * planes; }
};

bool IsPcx(std::span<const uint8_t> header) {
    constexpr std::array kVersions{0, 2, 3, 4, 5};
    constexpr std::array kBits{1, 2, 4, 8};
    return header.size() >= 12 && header[0] == kSignature &&
           std::ranges::find(kVersions, header[1]) != kVersions.end() && header[2] <= 1 &&
           std::ranges::find(kBits, header[3]) != kBits.end() &&
           Little16(&header[4]) <= Little16(&header[8]) &&
           Little16(&header[6]) <= Little16(&header[10]);
}

PcxHeader HeaderOf(const uint8_t* at) {
    PcxHeader header{.version = at[1],
                     .isEncoded = at[2] == 1,
                     .bits = at[3],
                     .planes = at[65],
                     .width = Little16(at + 8) - uint32_t{Little16(at + 4)} + 1,
                     .height = Little16(at + 10) - uint32_t{Little16(at + 6)} + 1,
                     .xDots = Little16(at + 12),
                     .yDots = Little16(at + 14),
                     .rowBytes = Little16(at + 66),
                     .paletteKind = Little16(at + 68),
                     .palette = {}};
    for (size_t i = 0; i < kHeaderColors; ++i)
        header.palette[i] = {at[16 + i * 3 + 2], at[16 + i * 3 + 1], at[16 + i * 3], 0};
    return header;
}

bool AreAllEqual(std::span<const PaletteEntry> colors) {
    return std::ranges::all_of(colors, [&](const PaletteEntry& each) {
        return each.blue == colors[0].blue && each.green == colors[0].green &&
               each.red == colors[0].red;
    });
}

// Those of up to 16 colours. The version tells whether there are any, but few programs care.
std::vector<PaletteEntry> SmallPalette(const PcxHeader& header) {
    const size_t count = size_t{1} << header.PixelBits();
    // Two are black and white: what stands in the header belongs to pictures of more.
    if (count == 2) return {EntryOf(0x000000), EntryOf(0xFFFFFF)};
    const auto stored = std::span(header.palette).first(count);
    if (!AreAllEqual(stored)) return {stored.begin(), stored.end()};
    std::vector<PaletteEntry> standard;
    for (size_t i = 0; i < count; ++i)
        standard.push_back(EntryOf(count == 4 ? kCga[i] : kEga[i]));
    return standard;
}

// Empty where there is none.
std::vector<PaletteEntry> LargePalette(dib::ByteSource& source) {
    std::array<uint8_t, kTableSize> table{};
    if (source.Size() < kHeaderSize + kTableSize ||
        source.ReadAt(source.Size() - kTableSize, table) != kTableSize || table[0] != kTableMark) {
        return {};
    }
    std::vector<PaletteEntry> colors;
    colors.reserve(256);
    for (size_t i = 1; i < kTableSize; i += 3)
        colors.push_back({table[i + 2], table[i + 1], table[i], 0});
    return colors;
}

class PcxReader final : public PictureReader {
  public:
    PcxReader(dib::ByteSource& source, const PcxHeader& header)
        : header_(header), input_(source, kHeaderSize), line_(header.LineBytes()) {
        outline_.width = header.width;
        outline_.height = header.height;
        // Others are sizes of screens.
        if (header.xDots == header.yDots) {
            outline_.xPelsPerMeter = codec::PelsPerMeterFromInch(header.xDots);
            outline_.yPelsPerMeter = codec::PelsPerMeterFromInch(header.yDots);
        }
        if (!header.HasTable()) {
            outline_.pixels = header.planes == 4 ? Pixels::kBgra : Pixels::kBgr;
            return;
        }
        const unsigned bits = header.PixelBits();
        outline_.pixels = Pixels::kIndexed;
        outline_.tableBits = bits == 1 ? 1 : bits <= 4 ? 4 : 8;
        outline_.palette = bits <= 4 ? SmallPalette(header) : LargePalette(source);
        if (bits > 4) pixelsEnd_ = source.Size() - std::min<uint64_t>(source.Size(), kTableSize);
        if (!outline_.palette.empty()) return;
        pixelsEnd_ = UINT64_MAX;
        // Of greys, of a program that knows no palettes yet, or cut off.
        outline_.palette = codec::GreyPalette(8);
        isDamaged_ = header.version >= 5 && header.paletteKind != kGreyKind;
    }

    uint32_t ReadRow(uint32_t y, uint8_t* row) override {
        const size_t got = ReadLine();
        // A table that begins before is none.
        if (y + 1 == header_.height && input_.Position() > pixelsEnd_) isDamaged_ = true;
        std::fill(line_.begin() + static_cast<ptrdiff_t>(got), line_.end(), uint8_t{0});
        if (!header_.HasTable()) {
            PutColors(row);
        } else if (header_.bits == 8) {
            std::copy_n(line_.begin(), header_.width, row);
        } else {
            PutIndexes(row);
        }
        if (got == line_.size()) return header_.width;
        isDamaged_ = true;
        // Whole planes before its end may be there.
        return static_cast<uint32_t>(std::min<size_t>(header_.width, got * 8 / header_.bits));
    }

  private:
    // The bytes of a row, plane after plane; runs may go on beyond its end.
    size_t ReadLine() {
        if (!header_.isEncoded) return input_.Read(line_);
        size_t done = 0;
        while (done < line_.size()) {
            if (left_ == 0) {
                const int byte = input_.Byte();
                if (byte < 0) break;
                const bool isRun = (byte & 0xC0) == 0xC0;
                const int value = isRun ? input_.Byte() : byte;
                if (value < 0) break;
                left_ = isRun ? static_cast<size_t>(byte & 0x3F) : 1;
                value_ = static_cast<uint8_t>(value);
            }
            const size_t count = std::min(left_, line_.size() - done);
            std::fill_n(line_.begin() + static_cast<ptrdiff_t>(done), count, value_);
            done += count;
            left_ -= count;
        }
        return done;
    }

    void PutColors(uint8_t* row) const {
        const uint8_t* red = line_.data();
        const size_t plane = header_.rowBytes;
        for (uint32_t x = 0; x < header_.width; ++x, ++red) {
            *row++ = red[2 * plane];
            *row++ = red[plane];
            *row++ = red[0];
            if (header_.planes == 4) *row++ = red[3 * plane];
        }
    }

    void PutIndexes(uint8_t* row) const {
        const unsigned bits = header_.bits, perByte = 8 / bits;
        const unsigned mask = (1u << bits) - 1;
        for (uint32_t x = 0; x < header_.width; ++x) {
            const unsigned shift = 8 - bits - x % perByte * bits;
            unsigned index = 0;
            for (unsigned plane = header_.planes; plane-- > 0;)
                index = index << bits |
                        (line_[size_t{plane} * header_.rowBytes + x / perByte] >> shift & mask);
            row[x] = static_cast<uint8_t>(index);
        }
    }

    const PcxHeader header_;
    ByteInput input_;
    std::vector<uint8_t> line_;
    uint64_t pixelsEnd_ = UINT64_MAX;  // where the table begins
    size_t left_ = 0;                  // of the run
    uint8_t value_ = 0;
};

Result OpenPcx(dib::ByteSource& source, codec::Progress& progress,
               std::unique_ptr<PictureReader>& reader) {
    std::array<uint8_t, kHeaderSize> bytes{};
    if (source.ReadAt(0, bytes).value_or(0) != bytes.size() || !IsPcx(bytes)) {
        return Result::kBrokenData;
    }
    const PcxHeader header = HeaderOf(bytes.data());
    const bool areColors = header.bits == 8 && (header.planes == 3 || header.planes == 4);
    if (header.planes == 0 || (!areColors && header.PixelBits() > 8)) {
        return NotRead(progress, L"この種類のPCXには対応していません");
    }
    if (uint64_t{header.rowBytes} * 8 < uint64_t{header.width} * header.bits) {
        return Result::kBrokenData;
    }
    reader = std::make_unique<PcxReader>(source, header);
    return Result::kSuccess;
}

constexpr uint32_t kDcxSignature = 0x3ADE68B1;
constexpr size_t kMostDcxPages = 1023;

bool IsDcx(std::span<const uint8_t> header) {
    return header.size() >= 12 && Little32(header.data()) == kDcxSignature;
}

// In the order of the list, which ends with a zero; each up to the next one in the file.
std::vector<Page> DcxPages(dib::ByteSource& source, size_t most) {
    std::array<uint8_t, kMostDcxPages * 4> list{};
    const size_t count = source.ReadAt(4, list).value_or(0) / 4;
    std::vector<Page> pages;
    for (size_t i = 0; i < count && Little32(&list[i * 4]) != 0; ++i) {
        const uint64_t offset = Little32(&list[i * 4]);
        if (offset < source.Size()) pages.push_back({.offset = offset});
    }
    std::vector<uint64_t> starts;
    starts.reserve(pages.size());
    for (const Page& page : pages)
        starts.push_back(page.offset);
    std::ranges::sort(starts);
    for (Page& page : pages) {
        const auto next = std::ranges::upper_bound(starts, page.offset);
        if (next != starts.end()) page.size = *next - page.offset;
    }
    if (pages.size() > most) pages.resize(most);
    return pages;
}

}  // namespace

constinit const Format kPcx{L"PCX", IsPcx, OpenPcx};
constinit const Format kDcx{L"DCX", IsDcx, OpenPcx, DcxPages};

}  // namespace tessary::misc
