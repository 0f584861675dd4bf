#include "helpers/metadata/file_metadata.h"

#include <algorithm>
#include <array>
#include <utility>

#include "helpers/color/color_profile.h"
#include "helpers/metadata/exif_fields.h"

namespace tessary::metadata {
namespace {

// Of a TIFF file; libexif looks at no more.
constexpr size_t kTiffBytes = 0x10000;

template <size_t kSize>
bool BeginsWith(const std::array<uint8_t, 8>& head, const uint8_t (&mark)[kSize]) {
    return std::equal(std::begin(mark), std::end(mark), head.begin());
}

constexpr uint8_t kJpegMark[] = {0xFF, 0xD8, 0xFF};
constexpr uint8_t kPngMark[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr uint8_t kTiffMark[] = {'I', 'I', 42, 0};
constexpr uint8_t kMotorolaTiffMark[] = {'M', 'M', 0, 42};

Carried TiffMetadata(dib::ByteSource& source) {
    Carried carried;
    carried.exif.resize(kTiffBytes);
    carried.exif.resize(source.ReadAt(0, carried.exif).value_or(0));
    return carried;
}

Carried ReadCarried(dib::ByteSource& source) {
    std::array<uint8_t, 8> head{};
    if (source.ReadAt(0, head) != head.size()) return {};
    if (BeginsWith(head, kJpegMark)) return ReadJpegMetadata(source);
    if (BeginsWith(head, kPngMark)) return ReadPngMetadata(source);
    const bool isTiff = BeginsWith(head, kTiffMark) || BeginsWith(head, kMotorolaTiffMark);
    return isTiff ? TiffMetadata(source) : Carried();
}

}  // namespace

FileMetadata ReadFileMetadata(dib::ByteSource& source) {
    Carried carried = ReadCarried(source);
    FileMetadata read;
    const UniqueExif exif = LoadExif(carried.exif);
    if (exif != nullptr) {
        AddExifFields(exif, read.fields);
        if (carried.profile.empty()) {
            const auto icc = ExifValue(exif, EXIF_IFD_0, EXIF_TAG_INTER_COLOR_PROFILE).Bytes();
            carried.profile.assign(icc.begin(), icc.end());
        }
        read.exif = std::move(carried.exif);
    }
    for (const Field& field : carried.fields)
        AddField(read.fields, field.kind, field.text);
    if (const auto profile = color::Profile::FromIcc(carried.profile)) {
        AddField(read.fields, FieldKind::kProfile, Utf8Of(profile->Name()));
    }
    std::ranges::stable_sort(read.fields, {}, &Field::kind);
    return read;
}

}  // namespace tessary::metadata
