// EXIF data that go into a file with its picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tessary::saving {

// A TIFF structure; without bytes: none. Of a JPEG file at most 65,527 bytes, which the caller sees
// to. What says of itself that it is sRGB is also marked so in the format's own way.
struct ExifBytes {
    const void* bytes = nullptr;
    size_t size = 0;

    std::span<const uint8_t> Span() const { return {static_cast<const uint8_t*>(bytes), size}; }
};

}  // namespace tessary::saving
