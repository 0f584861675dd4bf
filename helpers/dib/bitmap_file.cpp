#include "helpers/dib/bitmap_file.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "helpers/dib/bitmap_header.h"
#include "helpers/dib/pixel_decoder.h"

namespace tessary::dib {
namespace {

// An OS/2 bitmap array starts with 14 bytes of its own before the first picture's file header.
constexpr uint16_t kBitmapArrayType = 0x4142;  // "BA"
constexpr uint32_t kArrayHeaderSize = 14;

bool ReadFileHeader(std::span<const uint8_t> bytes, BitmapFileHeader& header) {
    if (bytes.size() < sizeof(header)) return false;
    std::memcpy(&header, bytes.data(), sizeof(header));
    return true;
}

}  // namespace

DibError BitmapFile::Open() {
    DibError error = ReadHeaders();
    if (error == DibError::kNone) error = ReadColorTable();
    return error;
}

DibError BitmapFile::ReadHeaders() {
    std::array<uint8_t, kArrayHeaderSize + kFileHeaderSize + kHeaderBytesRead> start;
    const std::optional<size_t> got = source_.ReadAt(0, start);
    if (!got) return DibError::kReadFailed;
    auto rest = std::span<const uint8_t>(start).first(*got);

    BitmapFileHeader fileHeader;
    if (!ReadFileHeader(rest, fileHeader)) return DibError::kNotABitmap;
    if (fileHeader.type == kBitmapArrayType) {
        rest = rest.subspan(kArrayHeaderSize);
        if (!ReadFileHeader(rest, fileHeader)) return DibError::kNotABitmap;
    }
    if (fileHeader.type != kBitmapFileType) return DibError::kNotABitmap;
    rest = rest.subspan(kFileHeaderSize);
    headerStart_ = *got - rest.size();

    const DibError error = ParseHeader(rest, format_);
    if (error != DibError::kNone) return error;
    if (BitsSize() == 0) return DibError::kTooLarge;

    pixelStart_ = FindPixels(fileHeader.pixelOffset);
    if (pixelStart_ >= source_.Size()) return DibError::kBitsTooShort;
    return IsBacked(format_, source_.Size() - pixelStart_) ? DibError::kNone : DibError::kTooLarge;
}

// An offset that points into the headers is none, and the pixels follow the colour table. One that
// points into the table is right where the writer has left out the colours that the picture does
// not use: then the file has no room for all of them. Writers that never count the table say that
// the pixels begin where it does.
uint64_t BitmapFile::FindPixels(uint64_t offset) const {
    const uint64_t tableStart = headerStart_ + format_.tableOffset;
    const uint64_t tableEnd = tableStart + uint64_t{format_.tableEntries} * format_.tableEntrySize;
    if (offset < tableStart) return tableEnd;
    if (offset >= tableEnd || format_.bitCount > 8 || source_.Size() <= tableEnd) return offset;
    if (format_.encoding != Encoding::kRaw) return offset == tableStart ? tableEnd : offset;
    const uint64_t pixels = RowStride(static_cast<uint64_t>(format_.width), format_.bitCount) *
                            static_cast<uint64_t>(format_.height);
    const bool hasRoom = source_.Size() - tableEnd >= pixels;
    const bool isCutShort = source_.Size() - offset < pixels;
    return hasRoom || (isCutShort && offset == tableStart) ? tableEnd : offset;
}

DibError BitmapFile::ReadColorTable() {
    std::array<uint8_t, kMaxPaletteEntries * sizeof(PaletteEntry)> table;
    const uint64_t tableStart = headerStart_ + format_.tableOffset;
    const uint64_t size = std::min<uint64_t>(
        uint64_t{format_.tableEntries} * format_.tableEntrySize, pixelStart_ - tableStart);
    const auto wanted = std::span(table).first(static_cast<size_t>(size));
    const std::optional<size_t> got = source_.ReadAt(tableStart, wanted);
    if (!got) return DibError::kReadFailed;
    info_ = MakePlainInfo(format_, wanted.first(*got));
    return DibError::kNone;
}

DibError BitmapFile::ReadBits(std::span<uint8_t> bits, const Progress& progress) {
    const uint64_t stride = RowStride(static_cast<uint64_t>(format_.width), format_.bitCount);
    const uint64_t available = source_.Size() - pixelStart_;
    const uint64_t needed = format_.encoding == Encoding::kRaw
                                ? stride * static_cast<uint64_t>(format_.height)
                                : available;
    ByteStream stream(source_, pixelStart_, pixelStart_ + std::min(needed, available), progress);
    return DecodePixels(format_, stride, stream, bits, isWhole_);
}

}  // namespace tessary::dib
