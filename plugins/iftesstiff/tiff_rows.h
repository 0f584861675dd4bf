// The rows of a picture, out of strips or tiles.
#pragma once

#include <cstdint>
#include <vector>

#include "plugins/common/result.h"
#include "plugins/iftesstiff/tiff_file.h"
#include "plugins/iftesstiff/tiff_form.h"

namespace tessary::tiff {

// Read from the top to the bottom. What cannot be unpacked has samples of 0.
class TiffRows {
  public:
    // `file` is at the directory of which `form` is; both must outlive this.
    TiffRows(const TiffFile& file, const TiffForm& form);

    // To be called first. kBrokenData for strips or tiles that make no sense.
    codec::Result Open();

    // Unpacks row `y`: rows come in their order. False when some of it is missing or makes no
    // sense.
    bool Read(uint32_t y);

    // Of the row read last: its bytes as they are stored, for pictures whose samples lie together;
    // with one of them in each plane else.
    const uint8_t* Raw(uint16_t plane = 0) const { return planes_[plane].row; }

  private:
    struct Plane {
        std::vector<uint8_t> band;  // rows that were unpacked together
        const uint8_t* row = nullptr;
    };

    bool ReadScanline(uint32_t y);
    bool ReadBand(uint32_t y);
    bool ReadStrip(uint32_t y, uint16_t plane);
    bool ReadTiles(uint32_t y, uint16_t plane);

    const TiffFile& file_;
    const TiffForm& form_;
    bool isTiled_ = false;
    uint32_t bandRows_ = 0;  // of tiles, or of strips of which all planes are wanted at once
    uint32_t tileWidth_ = 0;
    size_t rowBytes_ = 0;
    size_t tileRowBytes_ = 0;
    std::vector<Plane> planes_;
    std::vector<uint8_t> tile_;
    bool isBandSound_ = true;
    uint32_t brokenUntil_ = 0;     // rows before this one are not tried any more
    uint32_t failuresInARow_ = 0;  // of strips or bands
};

}  // namespace tessary::tiff
