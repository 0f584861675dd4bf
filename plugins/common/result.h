// How a decoder call ended.
#pragma once

#include <cstdint>

namespace tessary::codec {

// The values are the result codes of the Susie interface.
enum class Result : int32_t {
    kSuccess = 0,
    kAborted = 1,        // the host asked to stop
    kUnknownFormat = 2,  // not the format of this codec, or a variant that it does not read
    kBrokenData = 3,
    kOutOfMemory = 4,
    kReadError = 6,
    kInternalError = 8,
};

}  // namespace tessary::codec
