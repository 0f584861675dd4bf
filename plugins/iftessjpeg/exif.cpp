#include "plugins/iftessjpeg/exif.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace tessary::jpeg {
namespace {

constexpr std::array<uint8_t, 6> kExifName{'E', 'x', 'i', 'f', 0, 0};

constexpr uint16_t kTagOrientation = 0x0112;
constexpr uint16_t kTagXResolution = 0x011A;
constexpr uint16_t kTagYResolution = 0x011B;
constexpr uint16_t kTagResolutionUnit = 0x0128;
constexpr uint16_t kTypeShort = 3;
constexpr uint16_t kTypeRational = 5;
constexpr uint16_t kUnitCentimetre = 3;
constexpr uint32_t kEntrySize = 12;

int32_t Rounded(double value) {
    if (!(value >= 1) || value > std::numeric_limits<int32_t>::max()) return 0;
    return static_cast<int32_t>(std::lround(value));
}

// The TIFF structure behind the marker's name: offsets count from its first byte.
class TiffBlock {
  public:
    explicit TiffBlock(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    // Reads the byte order; false when the block does not start like one.
    bool Open() {
        if (bytes_.size() < 8 || bytes_[0] != bytes_[1]) return false;
        bigEndian_ = bytes_[0] == 'M';
        return (bigEndian_ || bytes_[0] == 'I') && Short(2) == 42;
    }

    std::optional<uint16_t> Short(uint64_t at) const {
        if (at + 2 > bytes_.size()) return std::nullopt;
        const unsigned first = bytes_[at], second = bytes_[at + 1];
        return static_cast<uint16_t>(bigEndian_ ? first << 8 | second : second << 8 | first);
    }

    std::optional<uint32_t> Long(uint64_t at) const {
        const auto first = Short(at), second = Short(at + 2);
        if (!first || !second) return std::nullopt;
        return bigEndian_ ? uint32_t{*first} << 16 | *second : uint32_t{*second} << 16 | *first;
    }

    std::optional<double> Rational(uint64_t at) const {
        const auto numerator = Long(at), denominator = Long(at + 4);
        if (!numerator || !denominator || *denominator == 0) return std::nullopt;
        return static_cast<double>(*numerator) / *denominator;
    }

  private:
    std::span<const uint8_t> bytes_;
    bool bigEndian_ = false;
};

}  // namespace

int32_t PelsPerMeterFromInch(double pixelsPerInch) {
    return Rounded(pixelsPerInch / 0.0254);
}

int32_t PelsPerMeterFromCentimetre(double pixelsPerCentimetre) {
    return Rounded(pixelsPerCentimetre * 100);
}

ExifEntries ReadExif(std::span<const uint8_t> marker) {
    ExifEntries entries;
    if (marker.size() < kExifName.size() ||
        !std::equal(kExifName.begin(), kExifName.end(), marker.begin())) {
        return entries;
    }
    TiffBlock block(marker.subspan(kExifName.size()));
    if (!block.Open()) return entries;
    const uint64_t directory = *block.Long(4);
    const uint32_t count = block.Short(directory).value_or(0);

    double xResolution = 0, yResolution = 0;
    uint16_t unit = 0;
    for (uint32_t i = 0; i < count; ++i) {
        const uint64_t entry = directory + 2 + uint64_t{i} * kEntrySize;
        const auto tag = block.Short(entry);
        const auto type = block.Short(entry + 2);
        if (!tag || !type) break;
        if (*type == kTypeShort) {
            const uint16_t value = block.Short(entry + 8).value_or(0);
            if (*tag == kTagOrientation && value >= 1 && value <= 8) entries.orientation = value;
            if (*tag == kTagResolutionUnit) unit = value;
        } else if (*type == kTypeRational) {
            const double value = block.Rational(block.Long(entry + 8).value_or(0)).value_or(0);
            if (*tag == kTagXResolution) xResolution = value;
            if (*tag == kTagYResolution) yResolution = value;
        }
    }
    // Without a unit the resolution is in inches (EXIF 2.3, 4.6.4).
    const auto toPels = unit == kUnitCentimetre ? PelsPerMeterFromCentimetre : PelsPerMeterFromInch;
    entries.xPelsPerMeter = toPels(xResolution);
    entries.yPelsPerMeter = toPels(yResolution);
    return entries;
}

}  // namespace tessary::jpeg
