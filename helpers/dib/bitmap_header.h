// The device-independent bitmap as every part of the program passes it on: a 40-byte header, masks
// or a colour table behind it, and pixel rows padded to 4 bytes. Layout: BITMAPINFOHEADER of the
// Windows GDI documents.
#pragma once

#include <cstdint>
#include <span>

namespace tessary::dib {

#pragma pack(push, 1)
// The first 14 bytes of a bitmap file (BITMAPFILEHEADER); the info block follows.
struct BitmapFileHeader {
    uint16_t type;      // kBitmapFileType
    uint32_t fileSize;  // bytes of the whole file; often wrong, never needed
    uint16_t reserved1;
    uint16_t reserved2;
    uint32_t pixelOffset;  // from the file's start to the pixel rows
};

// The first 40 bytes of every info block (BITMAPINFOHEADER).
struct BitmapInfoHeader {
    uint32_t size;          // bytes of this header; 40 in everything that the program hands on
    int32_t width;          // pixels, above 0
    int32_t height;         // pixels; above 0: bottom row first, below 0: top row first
    uint16_t planes;        // always 1
    uint16_t bitCount;      // 1, 4, 8, 16, 24 or 32
    uint32_t compression;   // one of the kCompression… values
    uint32_t sizeImage;     // bytes of the pixel rows; may be 0 when not compressed
    int32_t xPelsPerMeter;  // resolution, 0 when unknown
    int32_t yPelsPerMeter;
    uint32_t colorsUsed;  // entries of the colour table; 0: as many as the depth can index
    uint32_t colorsImportant;
};

// The whole header of an OS/2 1.x bitmap (BITMAPCOREHEADER); 3 bytes per colour follow. Only files
// and plug-ins have it, never a plain picture.
struct CoreHeader {
    uint32_t size;  // 12
    uint16_t width;
    uint16_t height;
    uint16_t planes;
    uint16_t bitCount;
};

// One entry of the colour table (RGBQUAD).
struct PaletteEntry {
    uint8_t blue;
    uint8_t green;
    uint8_t red;
    uint8_t reserved;
};
#pragma pack(pop)

static_assert(sizeof(BitmapFileHeader) == 14);
static_assert(sizeof(BitmapInfoHeader) == 40);
static_assert(sizeof(CoreHeader) == 12);
static_assert(sizeof(PaletteEntry) == 4);

constexpr uint16_t kBitmapFileType = 0x4D42;  // "BM"
constexpr uint32_t kFileHeaderSize = 14;
constexpr uint32_t kInfoHeaderSize = 40;
constexpr uint32_t kMaxPaletteEntries = 256;
// Bytes of the largest info block of the plain form.
constexpr uint32_t kMaxInfoBlockSize = kInfoHeaderSize + kMaxPaletteEntries * 4;

constexpr uint32_t kCompressionRgb = 0;        // BI_RGB
constexpr uint32_t kCompressionRle8 = 1;       // BI_RLE8
constexpr uint32_t kCompressionRle4 = 2;       // BI_RLE4
constexpr uint32_t kCompressionBitFields = 3;  // BI_BITFIELDS: three 4-byte masks follow the header
constexpr uint32_t kCompressionAlphaBitFields = 6;  // BI_ALPHABITFIELDS: four masks follow it

// Bytes of one pixel row of `width` pixels, padded to 4; 64-bit, so that no product of two header
// fields wraps.
constexpr uint64_t RowStride(uint64_t width, uint32_t bitCount) {
    return (width * bitCount + 31) / 32 * 4;
}

// Bytes of one pixel row without its padding.
constexpr uint64_t RowBytes(uint64_t width, uint32_t bitCount) {
    return (width * bitCount + 7) / 8;
}

// Bytes of the pixel rows that the header announces when they are not encoded; 0 for dimensions
// that no picture has.
constexpr uint64_t BitsBlockSize(const BitmapInfoHeader& header) {
    if (header.width <= 0) return 0;
    const int64_t height = header.height;
    return RowStride(static_cast<uint64_t>(header.width), header.bitCount) *
           static_cast<uint64_t>(height < 0 ? -height : height);
}

// The header as bytes, which lie in it.
inline std::span<const uint8_t> BytesOf(const BitmapInfoHeader& header) {
    return {reinterpret_cast<const uint8_t*>(&header), sizeof(header)};
}

// Entries of the colour table that the header announces, at most 256; 0 for depths above 8.
constexpr uint32_t PaletteEntries(const BitmapInfoHeader& header) {
    if (header.bitCount > 8) return 0;
    const uint32_t most = 1u << header.bitCount;
    return header.colorsUsed == 0 || header.colorsUsed > most ? most : header.colorsUsed;
}

// Bytes of an info block in the plain form: header, then masks (bit fields only) or colour
// table.
constexpr uint32_t InfoBlockSize(const BitmapInfoHeader& header) {
    if (header.bitCount > 8) {
        return kInfoHeaderSize + (header.compression == kCompressionBitFields        ? 12
                                  : header.compression == kCompressionAlphaBitFields ? 16
                                                                                     : 0);
    }
    return kInfoHeaderSize + PaletteEntries(header) * 4;
}

}  // namespace tessary::dib
