// The few EXIF entries that matter for showing a JPEG. Layout: TIFF 6.0 inside an APP1 marker, as
// the EXIF 2.3 document of CIPA describes it.
#pragma once

#include <cstdint>
#include <span>

namespace tessary::jpeg {

struct ExifEntries {
    uint16_t orientation = 1;   // 1 to 8
    int32_t xPelsPerMeter = 0;  // 0 when not given
    int32_t yPelsPerMeter = 0;
};

// Pixels per metre of a resolution in pixels per inch or centimetre; 0 when it is not usable.
int32_t PelsPerMeterFromInch(double pixelsPerInch);
int32_t PelsPerMeterFromCentimetre(double pixelsPerCentimetre);

// Reads the first directory of an APP1 marker's data. Other markers and damaged ones give the
// default values.
ExifEntries ReadExif(std::span<const uint8_t> marker);

}  // namespace tessary::jpeg
