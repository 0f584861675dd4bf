// EXIF data as libexif holds them. For this folder's own use.
#pragma once

#include <libexif/exif-data.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace tessary::metadata {

// What stands in front of the TIFF structure in JPEG files, and for libexif.
constexpr uint8_t kExifName[6] = {'E', 'x', 'i', 'f', 0, 0};

struct FreeExif {
    void operator()(ExifData* data) const { exif_data_unref(data); }
};
using UniqueExif = std::unique_ptr<ExifData, FreeExif>;

// Of a TIFF structure, without the name; everything that can be read is kept as it is. Null
// without memory, and where there is nothing.
UniqueExif LoadExif(std::span<const uint8_t> tiff);

// One entry of one directory, which must live longer; none: all answers are empty.
class ExifValue {
  public:
    ExifValue(const UniqueExif& data, ExifIfd directory, ExifTag tag);

    bool IsThere() const { return entry_ != nullptr; }
    // The bytes of its value.
    std::span<const uint8_t> Bytes() const;
    // As text of bytes.
    std::string Text() const;
    std::optional<uint32_t> Number() const;
    // A fraction, of a sign or not, by its place.
    std::optional<double> Fraction(unsigned index = 0) const;

  private:
    ExifEntry* entry_;
    ExifByteOrder order_;
};

}  // namespace tessary::metadata
