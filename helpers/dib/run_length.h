// Run-length encoded pixel data: RLE4 and RLE8 of the GDI documents, RLE24 of the OS/2 documents.
#pragma once

#include "helpers/dib/byte_stream.h"
#include "helpers/dib/source_format.h"
#include "helpers/dib/target_rows.h"

namespace tessary::dib {

// Decodes into rows of 4, 8 or 24 bits per pixel that hold zeros; skipped pixels stay so. Runs are
// cut at the end of a row, and decoding ends with the last row, the end mark or the data. False
// when the data ends before the picture does.
bool DecodeRunLength(Encoding encoding, ByteStream& stream, const TargetRows& rows);

}  // namespace tessary::dib
