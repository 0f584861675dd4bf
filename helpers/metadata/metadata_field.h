// What a file says of its picture, one thing at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessary::metadata {

// In the order in which they are shown.
enum class FieldKind : uint32_t {
    kDateTaken,  // 2024:05:31 12:34:56
    kMaker,      // of the camera
    kModel,
    kLens,
    kExposureTime,   // in seconds: 1/250, 2.5
    kFNumber,        // 5.6
    kIso,            // 400
    kExposureBias,   // +0.3
    kFocalLength,    // in millimetres
    kFocalLength35,  // as on 35 mm film
    kFlash,          // the number of the EXIF standard
    kPosition,       // 35°39'31.2"N 139°44'43.5"E
    kOrientation,    // 1 to 8
    kResolution,     // 300 × 300 dpi
    kTitle,
    kDescription,
    kComment,
    kArtist,
    kCopyright,
    kSoftware,
    kProfile,  // the name of the colour profile
    kLast = kProfile,
};

// Longer texts are cut, and so are longer lists.
constexpr size_t kLongestText = 4096;  // bytes
constexpr size_t kMostFields = 64;

struct Field {
    FieldKind kind = FieldKind::kComment;
    // As the file has it: UTF-8 or a code page of its author's.
    std::string text{};

    bool operator==(const Field&) const = default;
};
using Fields = std::vector<Field>;

// Appends one unless nothing but blanks and control characters is in the text, the same was said
// before, or the list is full.
void AddField(Fields& fields, FieldKind kind, std::string_view text);

// Ends at a zero.
std::string Utf8Of(std::u16string_view text);

}  // namespace tessary::metadata
