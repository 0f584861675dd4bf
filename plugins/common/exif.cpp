#include "plugins/common/exif.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "helpers/exif/orientation.h"
#include "helpers/exif/tiff_block.h"

namespace tessary::codec {
namespace {

using namespace exif;

constexpr std::array<uint8_t, 6> kExifName{'E', 'x', 'i', 'f', 0, 0};

constexpr uint16_t kTagResolutionUnit = 0x0128;
constexpr uint16_t kTagInteroperability = 0xA005;  // leads to another directory
constexpr uint16_t kTagColorSpace = 0xA001;
constexpr uint16_t kTagInteroperabilityIndex = 1;
constexpr uint16_t kUncalibrated = 0xFFFF;
constexpr uint16_t kAdobeSpace = 2;
constexpr uint16_t kUnitCentimetre = 3;

int32_t Rounded(double value) {
    if (!(value >= 1) || value > std::numeric_limits<int32_t>::max()) return 0;
    return static_cast<int32_t>(std::lround(value));
}

// Cameras say "no space of the standard" here, and in a directory further on that they mean "R03",
// which is Adobe RGB. Others say 2.
bool HasAdobeColors(const TiffBlock& block, uint32_t first) {
    const uint32_t exif = block.DirectoryBehind(first, kTagExif);
    if (exif == 0) return false;
    uint16_t space = 0;
    block.ForEach(exif, [&](const Entry& entry) {
        if (entry.tag == kTagColorSpace) space = block.Short(entry.place).value_or(0);
    });
    if (space == kAdobeSpace) return true;
    const uint32_t interoperability = block.DirectoryBehind(exif, kTagInteroperability);
    if (space != kUncalibrated || interoperability == 0) return false;
    bool isR03 = false;
    block.ForEach(interoperability, [&](const Entry& entry) {
        // The text stands in the entry itself.
        isR03 = isR03 || (entry.tag == kTagInteroperabilityIndex && entry.type == kTypeAscii &&
                          block.HasText(entry.place, "R03"));
    });
    return isR03;
}

}  // namespace

int32_t PelsPerMeterFromInch(double pixelsPerInch) {
    return Rounded(pixelsPerInch / 0.0254);
}

int32_t PelsPerMeterFromCentimetre(double pixelsPerCentimetre) {
    return Rounded(pixelsPerCentimetre * 100);
}

ExifEntries ReadExif(std::span<const uint8_t> tiff) {
    ExifEntries entries;
    TiffBlock block(tiff);
    if (!block.Open()) return entries;
    const uint32_t directory = *block.Long(kFirstDirectory);
    double xResolution = 0, yResolution = 0;
    uint16_t unit = 0;
    block.ForEach(directory, [&](const Entry& entry) {
        const uint16_t value =
            entry.type == kTypeShort ? block.Short(entry.place).value_or(0) : uint16_t{0};
        switch (entry.tag) {
            case kTagOrientation:
                if (IsOrientation(value)) entries.orientation = value;
                break;
            case kTagResolutionUnit:
                unit = value;
                break;
            case kTagXResolution:
                xResolution = block.RationalOf(entry);
                break;
            case kTagYResolution:
                yResolution = block.RationalOf(entry);
                break;
        }
    });
    entries.isAdobeRgb = HasAdobeColors(block, directory);
    // Without a unit the resolution is in inches (EXIF 2.3, 4.6.4).
    const auto toPels = unit == kUnitCentimetre ? PelsPerMeterFromCentimetre : PelsPerMeterFromInch;
    entries.xPelsPerMeter = toPels(xResolution);
    entries.yPelsPerMeter = toPels(yResolution);
    return entries;
}

ExifEntries ReadExifMarker(std::span<const uint8_t> marker) {
    if (marker.size() < kExifName.size() ||
        !std::equal(kExifName.begin(), kExifName.end(), marker.begin())) {
        return {};
    }
    return ReadExif(marker.subspan(kExifName.size()));
}

}  // namespace tessary::codec
