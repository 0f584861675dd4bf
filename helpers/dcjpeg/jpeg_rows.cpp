#include "helpers/dcjpeg/jpeg_rows.h"

#include "helpers/saving/trimmed_palette.h"

namespace tessary::dcjpeg {
namespace {

JpegPixels PixelsOf(const dib::DibView& picture) {
    if (picture.Format() == dib::PixelFormat::kBgrx32) return JpegPixels::kBgrx;
    return saving::TrimPalette(picture).IsGrey() ? JpegPixels::kGrey : JpegPixels::kBgr;
}

bool IsStored(const dib::DibView& picture) {
    return picture.Format() == dib::PixelFormat::kBgr24 ||
           picture.Format() == dib::PixelFormat::kBgrx32;
}

}  // namespace

JpegRows::JpegRows(const dib::DibView& picture)
    : picture_(picture),
      reader_(picture),
      pixels_(PixelsOf(picture)),
      scratchBytes_(IsStored(picture) ? 0 : static_cast<size_t>(picture.Width()) * 3) {}

const uint8_t* JpegRows::Row(int32_t y, std::span<uint8_t> scratch) const {
    const auto row = picture_.Row(y);
    if (scratchBytes_ == 0) return row.data();
    reader_.Row(row, scratch);
    if (pixels_ == JpegPixels::kGrey) {
        for (size_t x = 0; x < scratchBytes_ / 3; ++x)
            scratch[x] = scratch[x * 3];
    }
    return scratch.data();
}

}  // namespace tessary::dcjpeg
