// Changes the few entries of a picture's metadata that tell how it lies, each in its place: all
// other bytes stay.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "helpers/exif/tiff_block.h"

namespace tessary::exif {

// An EXIF structure of a stranger's; what is damaged in it is left alone.
class ExifPatch {
  public:
    // The bytes must outlive this. False of IsOpen: they are no such structure.
    explicit ExifPatch(std::span<uint8_t> tiff);
    bool IsOpen() const { return isOpen_; }

    // The picture's own; nothing when there is none of 1 to 8.
    std::optional<uint16_t> Orientation() const;
    // False when there is none that could be set.
    bool SetOrientation(uint16_t orientation);

    // The picture is another size now; `areSidesSwapped`: so its resolutions are exchanged.
    void SetSize(uint32_t width, uint32_t height, bool areSidesSwapped);

    // Has the small picture inside, a JPEG file, take the place of what `turn` makes of it. Where
    // that is empty or longer, the small picture is unlinked.
    void ReplaceThumbnail(
        const std::function<std::vector<uint8_t>(std::span<const uint8_t> jpeg)>& turn);

  private:
    uint32_t First() const { return *block_.Long(kFirstDirectory); }
    void SetShort(uint64_t at, uint32_t value);
    void SetLong(uint64_t at, uint32_t value);
    // An entry of one number, where it is there and is one.
    void SetNumber(uint32_t directory, uint16_t tag, uint32_t value);
    void SwapPlaces(uint32_t directory, uint16_t one, uint16_t other);

    std::span<uint8_t> bytes_;
    TiffBlock block_;
    bool isOpen_;
};

// Sets what an XMP packet, as text, says of the orientation, if it does.
void SetXmpOrientation(std::span<uint8_t> packet, uint16_t orientation);

}  // namespace tessary::exif
