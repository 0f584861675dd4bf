#include "helpers/metadata/exif_data.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tessary::metadata {
namespace {

// libexif looks at no more.
constexpr size_t kMostBytes = 0x10000;

bool IsEmpty(const ExifData& data) {
    return std::ranges::all_of(data.ifd, [](const ExifContent* directory) {
        return directory == nullptr || directory->count == 0;
    });
}

}  // namespace

UniqueExif LoadExif(std::span<const uint8_t> tiff) {
    UniqueExif data(exif_data_new());
    if (data == nullptr || tiff.empty()) return nullptr;
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_IGNORE_UNKNOWN_TAGS);
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    std::vector<uint8_t> named(std::begin(kExifName), std::end(kExifName));
    const auto read = tiff.first(std::min(tiff.size(), kMostBytes));
    named.insert(named.end(), read.begin(), read.end());
    exif_data_load_data(data.get(), named.data(), static_cast<unsigned>(named.size()));
    return IsEmpty(*data) ? nullptr : std::move(data);
}

ExifValue::ExifValue(const UniqueExif& data, ExifIfd directory, ExifTag tag)
    : entry_(exif_content_get_entry(data->ifd[directory], tag)),
      order_(exif_data_get_byte_order(data.get())) {}

std::span<const uint8_t> ExifValue::Bytes() const {
    if (entry_ == nullptr || entry_->data == nullptr) return {};
    return {entry_->data, entry_->size};
}

std::string ExifValue::Text() const {
    const auto bytes = Bytes();
    if (entry_ == nullptr || exif_format_get_size(entry_->format) != 1) return {};
    return {bytes.begin(), bytes.end()};
}

std::optional<uint32_t> ExifValue::Number() const {
    const auto bytes = Bytes();
    if (entry_ == nullptr || entry_->components == 0) return std::nullopt;
    if (entry_->format == EXIF_FORMAT_SHORT && bytes.size() >= 2) {
        return exif_get_short(bytes.data(), order_);
    }
    if (entry_->format == EXIF_FORMAT_LONG && bytes.size() >= 4) {
        return exif_get_long(bytes.data(), order_);
    }
    if (entry_->format == EXIF_FORMAT_BYTE && !bytes.empty()) return bytes[0];
    return std::nullopt;
}

std::optional<double> ExifValue::Fraction(unsigned index) const {
    constexpr size_t kSize = 8;
    const auto bytes = Bytes();
    if (entry_ == nullptr || bytes.size() < (size_t{index} + 1) * kSize) return std::nullopt;
    const uint8_t* const at = bytes.data() + index * kSize;
    double value = 0;
    if (entry_->format == EXIF_FORMAT_RATIONAL) {
        const ExifRational fraction = exif_get_rational(at, order_);
        value = static_cast<double>(fraction.numerator) / fraction.denominator;
    } else if (entry_->format == EXIF_FORMAT_SRATIONAL) {
        const ExifSRational fraction = exif_get_srational(at, order_);
        value = static_cast<double>(fraction.numerator) / fraction.denominator;
    } else {
        return std::nullopt;
    }
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

}  // namespace tessary::metadata
