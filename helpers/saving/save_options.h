// What the user can choose for each format. The records are handed to the libraries by address:
// 16-bit fields in exactly this order.
#pragma once

#include <cstdint>

#include "helpers/dib/backdrop.h"

namespace tessary::saving {

struct BmpSaveOptions {
    // 1: with the header of OS/2 1.x, where that can hold the picture; else a Windows bitmap.
    int16_t saveType = 0;
    // Not 0: run-length encoding of 4 and 8 bits per pixel in a Windows bitmap.
    int16_t saveRLE = 0;

    bool operator==(const BmpSaveOptions&) const = default;
};

struct PngSaveOptions {
    // Compression level, 0 (none) to 9 (smallest); beyond that the nearest of them.
    int16_t quality = 6;
    // Not 0: Adam7 interlace.
    int16_t interlace = 0;

    bool operator==(const PngSaveOptions&) const = default;
};

struct JpegSaveOptions {
    // 0 (smallest) to 100 (best), on the scale of the JPEG library; beyond that the nearest.
    int16_t quality = 60;
    // Not 0: progressive, which always has optimised tables too.
    int16_t progressive = 0;
    // Not 0: Huffman tables made for this picture.
    int16_t optimizedHuffman = 0;

    bool operator==(const JpegSaveOptions&) const = default;
};

// The choices for all formats.
struct SaveOptions {
    BmpSaveOptions bmp;
    PngSaveOptions png;
    JpegSaveOptions jpeg;
    // What transparent pixels are laid over in formats without transparency.
    dib::Backdrop backdrop = dib::Backdrop::kWhite;
    // Not 0: EXIF data are kept, in formats that can hold them.
    int16_t pngExif = 1;
    int16_t jpegExif = 1;
    // Not 0: with the place where a picture was taken.
    int16_t pngPosition = 1;
    int16_t jpegPosition = 1;
    // Not 0: pictures in colours of their own keep them, with their profile.
    int16_t pngProfile = 1;
    int16_t jpegProfile = 1;
    // Not 0: files get the dates of those that their pictures come from.
    int16_t keepDates = 0;

    bool operator==(const SaveOptions&) const = default;
};

static_assert(sizeof(BmpSaveOptions) == 4 && sizeof(PngSaveOptions) == 4 &&
              sizeof(JpegSaveOptions) == 6);

}  // namespace tessary::saving
