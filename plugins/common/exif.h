// The few EXIF entries that matter for showing a picture. Layout: a TIFF 6.0 structure, as the EXIF
// 2.3 document of CIPA describes it.
#pragma once

#include <cstdint>
#include <span>

namespace tessary::codec {

struct ExifEntries {
    uint16_t orientation = 1;   // 1 to 8
    int32_t xPelsPerMeter = 0;  // 0 when not given
    int32_t yPelsPerMeter = 0;
    bool isAdobeRgb = false;  // the colour space, by the rules for cameras' files (DCF 2.0)
};

// Pixels per metre of a resolution in pixels per inch or centimetre; 0 when it is not usable.
int32_t PelsPerMeterFromInch(double pixelsPerInch);
int32_t PelsPerMeterFromCentimetre(double pixelsPerCentimetre);

// Reads the structure, as PNG has it. What is damaged keeps its default value.
ExifEntries ReadExif(std::span<const uint8_t> tiff);

// The same of the data of a JPEG's APP1 marker. Other markers give the default values.
ExifEntries ReadExifMarker(std::span<const uint8_t> marker);

}  // namespace tessary::codec
