#include "helpers/convertdib/bitmap_writer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

#include "helpers/convertdib/run_length_encoder.h"
#include "helpers/saving/trimmed_palette.h"

namespace tessary::convertdib {
namespace {

using saving::SaveResult;

constexpr size_t kMostHeaderBytes = dib::kFileHeaderSize + dib::kMaxInfoBlockSize;
constexpr size_t kChunkSize = 256u << 10;  // rows are collected to this size before writing

using dib::CoreHeader;

// What a header of version 4 (BITMAPV4HEADER) has behind the first 40 bytes: the first one that
// readers agree can have a mask for alpha.
struct AlphaTail {
    uint32_t masks[4] = {dib::kMasksAlpha[0], dib::kMasksAlpha[1], dib::kMasksAlpha[2],
                         dib::kMasksAlpha[3]};
    uint32_t colorSpace = 0x73524742;  // 'sRGB'
    uint32_t endpointsAndGammas[12] = {};
};
static_assert(dib::kInfoHeaderSize + sizeof(AlphaTail) == 108);

enum class Kind { kPlain, kCore, kRle4, kRle8 };

Kind KindOf(const dib::DibView& picture, const saving::BmpSaveOptions& options) {
    // The fields have no sign, but many readers give them one.
    constexpr int32_t kMostInCore = std::numeric_limits<int16_t>::max();
    const uint16_t bits = dib::BitsPerPixel(picture.Format());
    const bool fitsCore = bits != 16 && bits != 32 && picture.Width() <= kMostInCore &&
                          picture.Height() <= kMostInCore;
    if (options.saveType == 1 && fitsCore) return Kind::kCore;
    if (options.saveRLE == 0) return Kind::kPlain;
    return bits == 4 ? Kind::kRle4 : bits == 8 ? Kind::kRle8 : Kind::kPlain;
}

// Everything before the pixels.
class Headers {
  public:
    Headers(const dib::DibView& picture, Kind kind, uint32_t bitsSize) {
        size_ = dib::kFileHeaderSize;  // written last: it tells where the pixels start
        if (kind == Kind::kCore) {
            AppendCoreInfo(picture);
        } else {
            AppendInfo(picture, kind, bitsSize);
        }
        dib::BitmapFileHeader file{};
        file.type = dib::kBitmapFileType;
        file.pixelOffset = static_cast<uint32_t>(size_);
        file.fileSize = file.pixelOffset + bitsSize;
        std::memcpy(bytes_.data(), &file, sizeof(file));
    }

    std::span<const uint8_t> Bytes() const { return std::span(bytes_).first(size_); }

  private:
    void Append(const void* from, size_t size) {
        std::memcpy(bytes_.data() + size_, from, size);
        size_ += size;
    }
    void AppendCoreInfo(const dib::DibView& picture);
    void AppendInfo(const dib::DibView& picture, Kind kind, uint32_t bitsSize);

    std::array<uint8_t, kMostHeaderBytes> bytes_{};
    size_t size_ = 0;
};

void Headers::AppendCoreInfo(const dib::DibView& picture) {
    CoreHeader header{};
    header.size = sizeof(header);
    header.width = static_cast<uint16_t>(picture.Width());
    header.height = static_cast<uint16_t>(picture.Height());
    header.planes = 1;
    header.bitCount = dib::BitsPerPixel(picture.Format());
    Append(&header, sizeof(header));
    const saving::TrimmedPalette palette = saving::TrimPalette(picture);
    const size_t entries = header.bitCount <= 8 ? size_t{1} << header.bitCount : 0;
    for (const dib::PaletteEntry& entry : std::span(palette.entries).first(entries))
        Append(&entry, 3);
}

void Headers::AppendInfo(const dib::DibView& picture, Kind kind, uint32_t bitsSize) {
    const saving::TrimmedPalette palette = saving::TrimPalette(picture);
    dib::BitmapInfoHeader header = picture.Header();
    header.height = picture.Height();
    header.sizeImage = bitsSize;
    header.colorsUsed = static_cast<uint32_t>(palette.size);
    header.colorsImportant = 0;
    if (kind == Kind::kRle4) header.compression = dib::kCompressionRle4;
    if (kind == Kind::kRle8) header.compression = dib::kCompressionRle8;
    if (picture.Format() == dib::PixelFormat::kBgra32) {
        header.size = sizeof(header) + sizeof(AlphaTail);
        header.compression = dib::kCompressionBitFields;
        Append(&header, sizeof(header));
        const AlphaTail tail;
        return Append(&tail, sizeof(tail));
    }
    Append(&header, sizeof(header));
    if (picture.Format() == dib::PixelFormat::kRgb565) {
        Append(dib::kMasks565, sizeof(dib::kMasks565));
    }
    Append(palette.Entries().data(), palette.Entries().size_bytes());
}

// Copies a row without what is behind its last pixel: that came out of somebody's memory and is not
// for the file. `to` was zero behind the pixels before.
void CopyPixels(std::span<const uint8_t> row, size_t rowBits, uint8_t* to) {
    const size_t bytes = (rowBits + 7) / 8;
    std::memcpy(to, row.data(), bytes);
    if (rowBits % 8 != 0) to[bytes - 1] &= static_cast<uint8_t>(0xFF00 >> rowBits % 8);
}

bool WritePlainRows(const dib::DibView& picture, files::ByteSink& sink) {
    const size_t stride = picture.Stride();
    const size_t rowBits =
        static_cast<size_t>(picture.Width()) * dib::BitsPerPixel(picture.Format());
    if (!picture.IsTopDown() && rowBits == stride * 8) return sink.Write(picture.Bits());

    std::vector<uint8_t> chunk(std::max<size_t>(kChunkSize / stride, 1) * stride);
    size_t filled = 0;
    for (int32_t y = picture.Height() - 1; y >= 0; --y) {
        CopyPixels(picture.Row(y), rowBits, chunk.data() + filled);
        filled += stride;
        if (filled == chunk.size() || y == 0) {
            if (!sink.Write(std::span(chunk).first(filled))) return false;
            filled = 0;
        }
    }
    return true;
}

// Hands the codes of each row, bottom row first, to `take` until that answers false. Encoding twice
// costs less than keeping the codes of a large picture: their size stands in the header.
template <typename Take>
bool EncodeRows(const dib::DibView& picture, Kind kind, const Take& take) {
    const auto width = static_cast<size_t>(picture.Width());
    std::vector<uint8_t> indexes(kind == Kind::kRle4 ? width : 0);
    std::vector<uint8_t> codes;
    for (int32_t y = picture.Height() - 1; y >= 0; --y) {
        const auto row = picture.Row(y);
        codes.clear();
        if (kind == Kind::kRle8) {
            EncodeRle8(row.first(width), codes);
        } else {
            for (size_t x = 0; x < width; ++x) {
                indexes[x] = x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0x0F;
            }
            EncodeRle4(indexes, codes);
        }
        const auto& end = y == 0 ? kRleEndOfBitmap : kRleEndOfLine;
        codes.insert(codes.end(), std::begin(end), std::end(end));
        if (!take(codes)) return false;
    }
    return true;
}

bool IsRunLength(Kind kind) {
    return kind == Kind::kRle4 || kind == Kind::kRle8;
}

uint64_t BitsSize(const dib::DibView& picture, Kind kind) {
    if (!IsRunLength(kind)) return picture.Bits().size();
    uint64_t size = 0;
    EncodeRows(picture, kind, [&](const std::vector<uint8_t>& codes) {
        size += codes.size();
        return true;
    });
    return size;
}

}  // namespace

SaveResult WriteBitmap(const dib::DibView& picture, const saving::BmpSaveOptions& options,
                       files::ByteSink& sink) {
    constexpr uint64_t kMostBits = std::numeric_limits<uint32_t>::max() - kMostHeaderBytes;
    const Kind kind = KindOf(picture, options);
    const uint64_t bitsSize = BitsSize(picture, kind);
    if (bitsSize > kMostBits) return SaveResult::kTooLarge;
    const Headers headers(picture, kind, static_cast<uint32_t>(bitsSize));
    const auto writeCodes = [&](const std::vector<uint8_t>& codes) { return sink.Write(codes); };
    const bool written =
        sink.Write(headers.Bytes()) &&
        (IsRunLength(kind) ? EncodeRows(picture, kind, writeCodes) : WritePlainRows(picture, sink));
    return written ? SaveResult::kSaved : SaveResult::kNotWritten;
}

}  // namespace tessary::convertdib
