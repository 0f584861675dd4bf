// How the writing of a picture ended.
#pragma once

namespace tessary::saving {

enum class SaveResult {
    kSaved,
    kNotWritten,   // the byte sink refused
    kCancelled,    // the progress function asked to stop
    kTooLarge,     // the format cannot hold a picture of this size
    kOutOfMemory,  // the compressor got no memory
};

}  // namespace tessary::saving
