// Makes plain pixel rows of the pixel data of any bitmap.
#pragma once

#include <cstdint>
#include <span>

#include "helpers/dib/byte_stream.h"
#include "helpers/dib/source_format.h"

namespace tessary::dib {

// Decodes the pixel data in `stream` into `bits`: PlainBitsSize(source) bytes in the form of
// PlainFormOf(source), bottom row first, every byte of which is written. Raw rows are
// `sourceStride` bytes apart. Where the data ends early, or run-length codes skip pixels, the
// picture stays 0; `isWhole` tells whether they have not ended early. Fails only with the stream's
// own errors.
DibError DecodePixels(const SourceFormat& source, uint64_t sourceStride, ByteStream& stream,
                      std::span<uint8_t> bits, bool& isWhole);

}  // namespace tessary::dib
