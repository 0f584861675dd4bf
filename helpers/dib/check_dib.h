// Checks a picture pair that comes from outside (a plug-in, the clipboard) and makes it plain.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "helpers/dib/dib_error.h"
#include "helpers/dib/plain_form.h"
#include "helpers/dib/source_format.h"

namespace tessary::dib {

// Verdict on a pair. It looks at the caller's blocks and owns none: they must outlive it.
//
//   const CheckedDib checked = CheckDib(info, bits);
//   if (checked.Error() != DibError::kNone) …refuse the pair…
//   if (!checked.KeepsInfo()) …replace the info block by checked.Info()…
//   if (!checked.KeepsBits()) …allocate checked.BitsSize() bytes, checked.WriteBits(them)…
class CheckedDib {
  public:
    DibError Error() const { return error_; }
    // The info block can be used as it is.
    bool KeepsInfo() const { return newInfo_.size == 0; }
    // The bits block can be used as it is, with the new info block if there is one.
    bool KeepsBits() const { return newBitsSize_ == 0; }
    // The plain info block that replaces the pair's; empty when that is kept.
    std::span<const uint8_t> Info() const { return newInfo_.Bytes(); }
    // Bytes of the bits block that replaces the pair's; 0 when that is kept.
    size_t BitsSize() const { return newBitsSize_; }
    // Writes the new pixel rows, bottom row first: exactly the BitsSize() bytes of `target`.
    void WriteBits(std::span<uint8_t> target) const;

  private:
    friend CheckedDib CheckDib(std::span<const uint8_t>, std::span<const uint8_t>);

    void Judge(std::span<const uint8_t> info);
    DibError JudgeBits();

    DibError error_ = DibError::kNone;
    InfoBlock newInfo_;
    size_t newBitsSize_ = 0;
    SourceFormat source_;
    uint64_t sourceStride_ = 0;
    std::span<const uint8_t> bits_;
};

// `info` and `bits` are the blocks in their real sizes; nothing beyond is ever read, and nothing in
// them is believed unchecked. Refused is what has no readable header, dimensions, depth or
// compression, and what lacks pixel rows. Put right are: longer and shorter headers; wrong planes,
// colours used and image size; a colour table that is cut short (missing entries become black; a
// missing table becomes a grey ramp); masks, depths and run-length encoding that the plain form
// lacks; rows that are not padded, or the last one's padding missing. Whatever is already plain is
// kept, including the top-down order of rows.
CheckedDib CheckDib(std::span<const uint8_t> info, std::span<const uint8_t> bits);

}  // namespace tessary::dib
