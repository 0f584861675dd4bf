// What goes into a file with its picture, and what is set about it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "helpers/files/file_dates.h"

namespace tessary::saving {

// Bytes of the caller's; none: there is nothing to go in.
struct ExtraBytes {
    const void* bytes = nullptr;
    size_t size = 0;

    std::span<const uint8_t> Span() const { return {static_cast<const uint8_t*>(bytes), size}; }
};

// Handed to the libraries by address. Formats that cannot hold something do without it.
struct FileExtras {
    // A TIFF structure; of a JPEG file at most 65,527 bytes, which the caller sees to. Without a
    // profile the file is also marked as sRGB in the format's own way, as the data say.
    ExtraBytes exif{};
    // The ICC profile of the pixels, well formed (color::IsWellFormed); none: they are sRGB.
    ExtraBytes profile{};
    // That the file gets.
    files::FileDates dates{};
};

}  // namespace tessary::saving
