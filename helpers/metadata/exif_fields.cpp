#include "helpers/metadata/exif_fields.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "helpers/metadata/user_comment.h"

namespace tessary::metadata {
namespace {

// Tags of GPS directories have the numbers of others.
constexpr auto kLatitudeRef = static_cast<ExifTag>(1);
constexpr auto kLatitude = static_cast<ExifTag>(2);
constexpr auto kLongitudeRef = static_cast<ExifTag>(3);
constexpr auto kLongitude = static_cast<ExifTag>(4);

// Without zeros at the end.
std::string Decimal(double value, int places, bool isSigned = false) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), isSigned ? "%+.*f" : "%.*f", places, value);
    std::string result(text.data());
    if (result.find('.') == std::string::npos) return result;
    result.erase(result.find_last_not_of('0') + 1);
    if (result.back() == '.') result.pop_back();
    return result;
}

// As cameras show it: 1/250, 0.3, 30.
std::string ExposureText(double seconds) {
    if (!(seconds > 0) || seconds > 1e6 || seconds < 1e-6) return {};
    if (seconds < 0.29) return "1/" + Decimal(1 / seconds, 0);
    return Decimal(seconds, 1);
}

std::string PositiveText(std::optional<double> value, int places) {
    return value && *value > 0 && *value < 1e6 ? Decimal(*value, places) : std::string();
}

std::string BiasText(std::optional<double> value) {
    if (!value || std::abs(*value) > 100) return {};
    return std::abs(*value) < 0.05 ? "0" : Decimal(*value, 1, true);
}

// Degrees, minutes and seconds of one direction; empty when they cannot be.
std::string AngleText(const ExifValue& angle, const ExifValue& reference,
                      std::string_view directions, double most) {
    const std::string direction = reference.Text().substr(0, 1);
    if (direction.empty() || directions.find(direction) == std::string_view::npos) return {};
    const std::optional<double> degrees = angle.Fraction(0);
    if (!degrees) return {};
    const double all =
        *degrees + angle.Fraction(1).value_or(0) / 60 + angle.Fraction(2).value_or(0) / 3600;
    if (!(all >= 0) || all > most) return {};
    const auto tenths = std::lround(all * 36000);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%ld\u00B0%02ld'%02ld.%ld\"%s", tenths / 36000,
                  tenths / 600 % 60, tenths / 10 % 60, tenths % 10, direction.c_str());
    return text.data();
}

std::string PositionText(const UniqueExif& data) {
    const auto value = [&](ExifTag tag) { return ExifValue(data, EXIF_IFD_GPS, tag); };
    const std::string latitude = AngleText(value(kLatitude), value(kLatitudeRef), "NS", 90);
    const std::string longitude = AngleText(value(kLongitude), value(kLongitudeRef), "EW", 180);
    return latitude.empty() || longitude.empty() ? std::string() : latitude + ' ' + longitude;
}

std::string ResolutionText(const UniqueExif& data) {
    const auto value = [&](ExifTag tag) { return ExifValue(data, EXIF_IFD_0, tag); };
    const std::string x = PositiveText(value(EXIF_TAG_X_RESOLUTION).Fraction(), 2);
    const std::string y = PositiveText(value(EXIF_TAG_Y_RESOLUTION).Fraction(), 2);
    if (x.empty() || y.empty()) return {};
    constexpr uint32_t kCentimetres = 3;
    const bool isMetric = value(EXIF_TAG_RESOLUTION_UNIT).Number() == kCentimetres;
    return x + " \u00D7 " + y + (isMetric ? " /cm" : " dpi");
}

void AddText(Fields& fields, FieldKind kind, const UniqueExif& data, ExifIfd directory,
             ExifTag tag) {
    AddField(fields, kind, ExifValue(data, directory, tag).Text());
}

// Texts of the system's own, which are better than those of eight bits where both are there.
void AddSystemText(Fields& fields, FieldKind kind, const UniqueExif& data, ExifTag tag) {
    AddField(fields, kind, UnitsText(ExifValue(data, EXIF_IFD_0, tag).Bytes(), false));
}

void AddTexts(const UniqueExif& data, Fields& fields) {
    AddSystemText(fields, FieldKind::kTitle, data, EXIF_TAG_XP_TITLE);
    AddText(fields, FieldKind::kDescription, data, EXIF_IFD_0, EXIF_TAG_IMAGE_DESCRIPTION);
    const bool isBigEndian = exif_data_get_byte_order(data.get()) == EXIF_BYTE_ORDER_MOTOROLA;
    const ExifValue comment(data, EXIF_IFD_EXIF, EXIF_TAG_USER_COMMENT);
    AddField(fields, FieldKind::kComment, CommentText(comment.Bytes(), isBigEndian));
    AddSystemText(fields, FieldKind::kComment, data, EXIF_TAG_XP_COMMENT);
    AddText(fields, FieldKind::kArtist, data, EXIF_IFD_0, EXIF_TAG_ARTIST);
    AddSystemText(fields, FieldKind::kArtist, data, EXIF_TAG_XP_AUTHOR);
    AddText(fields, FieldKind::kCopyright, data, EXIF_IFD_0, EXIF_TAG_COPYRIGHT);
    AddText(fields, FieldKind::kSoftware, data, EXIF_IFD_0, EXIF_TAG_SOFTWARE);
}

void AddNumber(Fields& fields, FieldKind kind, const ExifValue& value, uint32_t least) {
    const std::optional<uint32_t> number = value.Number();
    if (number && *number >= least) AddField(fields, kind, std::to_string(*number));
}

void AddExposure(const UniqueExif& data, Fields& fields) {
    const auto value = [&](ExifTag tag) { return ExifValue(data, EXIF_IFD_EXIF, tag); };
    AddField(fields, FieldKind::kExposureTime,
             ExposureText(value(EXIF_TAG_EXPOSURE_TIME).Fraction().value_or(0)));
    AddField(fields, FieldKind::kFNumber, PositiveText(value(EXIF_TAG_FNUMBER).Fraction(), 1));
    AddNumber(fields, FieldKind::kIso, value(EXIF_TAG_ISO_SPEED_RATINGS), 1);
    AddField(fields, FieldKind::kExposureBias,
             BiasText(value(EXIF_TAG_EXPOSURE_BIAS_VALUE).Fraction()));
    AddField(fields, FieldKind::kFocalLength,
             PositiveText(value(EXIF_TAG_FOCAL_LENGTH).Fraction(), 1));
    AddNumber(fields, FieldKind::kFocalLength35, value(EXIF_TAG_FOCAL_LENGTH_IN_35MM_FILM), 1);
    AddNumber(fields, FieldKind::kFlash, value(EXIF_TAG_FLASH), 0);
}

}  // namespace

void AddExifFields(const UniqueExif& data, Fields& fields) {
    AddText(fields, FieldKind::kDateTaken, data, EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL);
    AddText(fields, FieldKind::kMaker, data, EXIF_IFD_0, EXIF_TAG_MAKE);
    AddText(fields, FieldKind::kModel, data, EXIF_IFD_0, EXIF_TAG_MODEL);
    AddText(fields, FieldKind::kLens, data, EXIF_IFD_EXIF, EXIF_TAG_LENS_MODEL);
    AddExposure(data, fields);
    AddField(fields, FieldKind::kPosition, PositionText(data));
    AddNumber(fields, FieldKind::kOrientation, ExifValue(data, EXIF_IFD_0, EXIF_TAG_ORIENTATION),
              1);
    AddField(fields, FieldKind::kResolution, ResolutionText(data));
    AddTexts(data, fields);
}

}  // namespace tessary::metadata
