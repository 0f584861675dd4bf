// A picture in the pixels that the JPEG library takes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "helpers/dib/unpack_row.h"

namespace tessary::dcjpeg {

enum class JpegPixels : uint8_t {
    kGrey,  // one byte
    kBgr,   // blue, green, red bytes
    kBgrx,  // and a fourth one that is not looked at
};

// Grey are the pictures whose colour table is grey as far as it is used; 24 and 32 bits without
// alpha are taken as they are stored, all others unpacked.
class JpegRows {
  public:
    // `picture` must outlive the object.
    explicit JpegRows(const dib::DibView& picture);

    JpegPixels Pixels() const { return pixels_; }
    // Bytes that Row needs beside the picture.
    size_t ScratchBytes() const { return scratchBytes_; }
    // Row y, counted from the top: in the picture itself, or made in `scratch`.
    const uint8_t* Row(int32_t y, std::span<uint8_t> scratch) const;

  private:
    const dib::DibView& picture_;
    dib::RowReader reader_;
    JpegPixels pixels_;
    size_t scratchBytes_;
};

}  // namespace tessary::dcjpeg
