// Why a bitmap was refused.
#pragma once

namespace tessary::dib {

enum class DibError {
    kNone,
    kNotABitmap,              // the file does not start like a bitmap file
    kTruncatedHeader,         // the block or file ends inside its header or masks
    kUnsupportedHeader,       // a header size that no kind of bitmap has
    kBadDimensions,           // width below 1, or height 0 or -2^31
    kUnsupportedDepth,        // bits per pixel other than 1, 2, 4, 8, 16, 24, 32, 64
    kUnsupportedCompression,  // Huffman, JPEG, PNG, unknown, or one that the depth cannot have
    kTooLarge,                // beyond kMaxBitsSize, or far more pixels than the data can hold
    kBitsTooShort,            // pixel rows are missing; in a file: all of them
    kReadFailed,              // the medium reported an error
    kAborted,                 // the progress function asked to stop
};

}  // namespace tessary::dib
