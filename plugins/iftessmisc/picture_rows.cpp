#include "plugins/iftessmisc/picture_rows.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "plugins/common/color_picture.h"
#include "plugins/common/flatten_rows.h"
#include "plugins/common/palette.h"

namespace tessary::misc {
namespace {

using codec::ColorPicture;
using codec::OrientedRows;
using codec::PictureForm;
using codec::PictureTarget;
using codec::Result;

using Pixel = std::array<uint8_t, 4>;

bool HasTable(Pixels pixels) {
    return pixels == Pixels::kIndexed || pixels == Pixels::kGreyAlpha;
}

ColorPicture ColorsOf(const Outline& outline) {
    ColorPicture colors{.width = outline.width,
                        .height = outline.height,
                        .orientation = outline.orientation,
                        .xPelsPerMeter = outline.xPelsPerMeter,
                        .yPelsPerMeter = outline.yPelsPerMeter,
                        .profile = outline.profile};
    switch (outline.pixels) {
        case Pixels::kBgra:
            colors.layout = color::Layout::kBgra8;
            break;
        case Pixels::kBgr16:
            colors.layout = color::Layout::kBgr16BigEndian;
            break;
        case Pixels::kBgra16:
            colors.layout = color::Layout::kBgra16BigEndian;
            break;
        default:
            colors.layout = color::Layout::kBgr8;
    }
    return colors;
}

// Indexes as pixels of 32 bits.
codec::RowConversion TableToAlpha(const Outline& outline) {
    std::array<Pixel, 256> table{};
    for (size_t i = 0; i < std::min(table.size(), outline.palette.size()); ++i) {
        const dib::PaletteEntry& entry = outline.palette[i];
        const uint8_t alpha = i < outline.paletteAlpha.size() ? outline.paletteAlpha[i] : 0xFF;
        table[i] = {entry.blue, entry.green, entry.red, alpha};
    }
    return {1, [table, width = outline.width](const uint8_t* in, uint8_t* out) {
                for (uint32_t x = 0; x < width; ++x)
                    std::memcpy(out + size_t{x} * 4, &table[in[x]], 4);
            }};
}

codec::RowConversion GreyAlpha(uint32_t width, bool keepsAlpha) {
    if (!keepsAlpha) {
        return {2, [width](const uint8_t* in, uint8_t* out) {
                    codec::FlattenGreyRow(in, out, width, codec::kWhite);
                }};
    }
    return {2, [width](const uint8_t* in, uint8_t* out) {
                for (uint32_t x = 0; x < width; ++x, in += 2, out += 4) {
                    out[0] = out[1] = out[2] = in[0];
                    out[3] = in[1];
                }
            }};
}

std::vector<dib::PaletteEntry> OpaquePalette(const Outline& outline) {
    if (outline.pixels == Pixels::kGreyAlpha) return codec::GreyPalette(8);
    std::vector<dib::PaletteEntry> palette = outline.palette;
    for (size_t i = 0; i < std::min(palette.size(), outline.paletteAlpha.size()); ++i)
        palette[i] = codec::BlendColor(palette[i], outline.paletteAlpha[i], codec::kWhite);
    return palette;
}

// A row of the picture whose indexes come a byte each, but are fewer bits there.
class PackedRows {
  public:
    PackedRows(const codec::PictureRows& rows, const Outline& outline)
        : rows_(rows), bits_(outline.tableBits), indexes_(outline.width) {}

    uint8_t* RowBuffer(uint32_t) { return indexes_.data(); }
    void RowDone(uint32_t y) {
        uint8_t* out = rows_.Row(y);
        const unsigned perByte = 8 / bits_;
        for (size_t x = 0; x < indexes_.size(); x += perByte, ++out) {
            unsigned byte = 0;
            for (unsigned i = 0; i < perByte; ++i) {
                const size_t at = x + i;
                byte = byte << bits_ | (at < indexes_.size() ? indexes_[at] : 0u);
            }
            *out = static_cast<uint8_t>(byte);
        }
    }
    void Finish() {}

  private:
    codec::PictureRows rows_;
    unsigned bits_;
    std::vector<uint8_t> indexes_;
};

template <class Rows>
Result Fill(PictureReader& reader, Rows& rows, codec::Progress& progress, bool& isDamaged) {
    const Outline& outline = reader.Form();
    const size_t pixelBytes = BytesOf(outline.pixels);
    bool hasPixels = false, isAtEnd = false;
    for (uint32_t y = 0; y < outline.height; ++y) {
        if (!progress.Report(y, outline.height)) return Result::kAborted;
        uint8_t* const row = rows.RowBuffer(y);
        const uint32_t count = isAtEnd ? 0 : reader.ReadRow(y, row);
        hasPixels = hasPixels || count != 0;
        if (count < outline.width) {
            if (!hasPixels) return Result::kBrokenData;
            isAtEnd = true;
            std::memset(row + count * pixelBytes, 0, (outline.width - count) * pixelBytes);
        }
        rows.RowDone(y);
    }
    rows.Finish();
    isDamaged = isAtEnd || reader.IsDamaged();
    return Result::kSuccess;
}

}  // namespace

PictureForm FormOf(const Outline& outline) {
    PictureForm form = codec::FormOf(ColorsOf(outline));
    if (HasTable(outline.pixels)) form.bitCount = outline.tableBits;
    return form;
}

Result PutPicture(PictureReader& reader, PictureTarget& target, uint64_t sourceSize,
                  codec::Progress& progress, bool& isDamaged) {
    const Outline& outline = reader.Form();
    // Before anything is made as large as the head says.
    const uint64_t pixels = uint64_t{outline.width} * outline.height;
    if (pixels == 0 || !codec::IsPlausibleSize(pixels, sourceSize)) return Result::kBrokenData;
    if (!reader.Prepare(progress)) return Result::kAborted;
    std::optional<OrientedRows> oriented;
    if (!HasTable(outline.pixels)) {
        const Result created = CreateColorPicture(target, ColorsOf(outline), sourceSize, oriented);
        if (created != Result::kSuccess) return created;
        return Fill(reader, *oriented, progress, isDamaged);
    }
    PictureForm form = FormOf(outline);
    const bool isGreyAlpha = outline.pixels == Pixels::kGreyAlpha;
    const bool keepsAlpha = target.TakesAlpha() && (isGreyAlpha || !outline.paletteAlpha.empty());
    if (keepsAlpha) form.bitCount = 32;
    codec::PictureRows rows;
    const Result created = CreatePicture(
        target, form, keepsAlpha ? std::vector<dib::PaletteEntry>() : OpaquePalette(outline),
        sourceSize, rows);
    if (created != Result::kSuccess) return created;
    if (form.bitCount < 8) {
        PackedRows packed(rows, outline);
        return Fill(reader, packed, progress, isDamaged);
    }
    codec::RowConversion conversion;
    if (isGreyAlpha) {
        conversion = GreyAlpha(outline.width, keepsAlpha);
    } else if (keepsAlpha) {
        conversion = TableToAlpha(outline);
    }
    oriented.emplace(codec::RowPlaces{rows, outline.width, outline.height, form.bitCount / 8u,
                                      outline.orientation},
                     std::move(conversion));
    return Fill(reader, *oriented, progress, isDamaged);
}

}  // namespace tessary::misc
