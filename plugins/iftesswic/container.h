// Telling the file formats of iftesswic.spi apart by their first bytes.
#pragma once

#include <cstdint>
#include <span>

namespace tessary::wic {

enum class Container {
    kUnknown,
    kTiff,
    kIcon,
    kCursor,
    kHeif,  // HEIF and AVIF: the same box structure, and one decoder on Windows
    kJpegXr,
    kDds,
};

// Judges by at most the first 22 bytes; shorter headers are unknown unless the signature is whole.
Container DetectContainer(std::span<const uint8_t> header);

}  // namespace tessary::wic
