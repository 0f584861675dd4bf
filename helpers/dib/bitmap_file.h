// Reads bitmap files: every kind that Windows and OS/2 programs write, whole or damaged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "helpers/dib/byte_source.h"
#include "helpers/dib/byte_stream.h"
#include "helpers/dib/dib_error.h"
#include "helpers/dib/plain_form.h"
#include "helpers/dib/source_format.h"

namespace tessary::dib {

// One bitmap file, or the first picture of a bitmap array, as a plain pair with bottom row first.
// Reads only what it needs: the headers in Open, the pixels once in ReadBits. Allocates nothing.
class BitmapFile {
  public:
    // `source` must outlive the object.
    explicit BitmapFile(ByteSource& source) : source_(source) {}

    // Reads header and colour table and checks them against the file's size. After kNone, Info()
    // and BitsSize() hold. Files that end within their pixels are accepted.
    DibError Open();
    // The plain info block: at most kMaxInfoBlockSize bytes.
    std::span<const uint8_t> Info() const { return info_.Bytes(); }
    // Bytes that ReadBits will write.
    size_t BitsSize() const { return PlainBitsSize(format_); }
    // Reads the pixels into the BitsSize() bytes of `bits` and writes each of them; what the file
    // lacks is 0. `progress` may be empty.
    DibError ReadBits(std::span<uint8_t> bits, const Progress& progress);
    // Once they have been read: whether the file has all of them.
    bool IsWhole() const { return isWhole_; }

  private:
    DibError ReadHeaders();
    DibError ReadColorTable();
    // Where the pixels begin, by the file header's word for it.
    uint64_t FindPixels(uint64_t offset) const;

    ByteSource& source_;
    SourceFormat format_;
    InfoBlock info_;
    uint64_t headerStart_ = 0;  // the info block's position in the file
    uint64_t pixelStart_ = 0;
    bool isWhole_ = false;
};

}  // namespace tessary::dib
