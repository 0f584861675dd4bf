// EXIF data for a file that a picture is saved in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessary::metadata {

// In bytes: a JPEG marker with its length and the data's name has this much left.
constexpr size_t kMostSavedExif = 0xFFFF - 2 - 6;

struct SavedPicture {
    uint32_t width = 0;  // in pixels
    uint32_t height = 0;
    bool keepsPosition = true;  // where it was taken
    bool isSrgb = true;         // else its file has a profile
};

// Makes of the EXIF data of one file, a TIFF structure, those for another, which has the same
// picture upright and of that size. The thumbnail is dropped, and so is what tells of the
// first file's own layout, and a maker note of a kind that libexif does not know: what it points to
// moves. Empty when nothing of interest is left, or it is too much for a JPEG file.
std::vector<uint8_t> SavedExif(std::span<const uint8_t> tiff, const SavedPicture& picture);

}  // namespace tessary::metadata
