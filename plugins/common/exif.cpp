#include "plugins/common/exif.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace tessary::codec {
namespace {

constexpr std::array<uint8_t, 6> kExifName{'E', 'x', 'i', 'f', 0, 0};

constexpr uint16_t kTagOrientation = 0x0112;
constexpr uint16_t kTagXResolution = 0x011A;
constexpr uint16_t kTagYResolution = 0x011B;
constexpr uint16_t kTagResolutionUnit = 0x0128;
constexpr uint16_t kTagExif = 0x8769;  // leads to another directory, as does the next one
constexpr uint16_t kTagInteroperability = 0xA005;
constexpr uint16_t kTagColorSpace = 0xA001;
constexpr uint16_t kTagInteroperabilityIndex = 1;
constexpr uint16_t kTypeAscii = 2;
constexpr uint16_t kTypeShort = 3;
constexpr uint16_t kTypeRational = 5;
constexpr uint16_t kUncalibrated = 0xFFFF;
constexpr uint16_t kAdobeSpace = 2;
constexpr uint64_t kFirstDirectory = 4;  // where its place stands
constexpr uint16_t kUnitCentimetre = 3;
constexpr uint32_t kEntrySize = 12;

int32_t Rounded(double value) {
    if (!(value >= 1) || value > std::numeric_limits<int32_t>::max()) return 0;
    return static_cast<int32_t>(std::lround(value));
}

struct Entry {
    uint16_t tag;
    uint16_t type;
    uint64_t place;  // of its value, or of the number of the place where that stands
};

// The TIFF structure: offsets count from its first byte.
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

    bool HasText(uint64_t at, std::string_view text) const {
        return at + text.size() <= bytes_.size() &&
               std::equal(text.begin(), text.end(), bytes_.begin() + static_cast<ptrdiff_t>(at));
    }

    // 0 when it is none.
    double RationalOf(const Entry& entry) const {
        if (entry.type != kTypeRational) return 0;
        const uint64_t at = Long(entry.place).value_or(0);
        const auto numerator = Long(at), denominator = Long(at + 4);
        if (!numerator || !denominator || *denominator == 0) return 0;
        return static_cast<double>(*numerator) / *denominator;
    }

    // Calls `use` with the entries of a directory as far as they are there.
    template <class Use>
    void ForEach(uint32_t directory, Use use) const {
        const uint32_t count = Short(directory).value_or(0);
        for (uint32_t i = 0; i < count; ++i) {
            const uint64_t entry = uint64_t{directory} + 2 + uint64_t{i} * kEntrySize;
            const auto tag = Short(entry), type = Short(entry + 2);
            if (!tag || !type) return;
            use(Entry{*tag, *type, entry + 8});
        }
    }

    // Of the directory that an entry of this one leads to; 0 when it does not.
    uint32_t DirectoryBehind(uint32_t directory, uint16_t tag) const {
        uint32_t found = 0;
        ForEach(directory, [&](const Entry& entry) {
            if (entry.tag == tag) found = Long(entry.place).value_or(0);
        });
        return found;
    }

  private:
    std::span<const uint8_t> bytes_;
    bool bigEndian_ = false;
};

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
                if (value >= 1 && value <= 8) entries.orientation = value;
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
