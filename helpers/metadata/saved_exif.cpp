#include "helpers/metadata/saved_exif.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "helpers/metadata/exif_data.h"

namespace tessary::metadata {
namespace {

constexpr ExifShort kUpright = 1;
constexpr ExifShort kSrgb = 1;
constexpr ExifShort kUncalibrated = 0xFFFF;

// Of the first directory, which in TIFF files also tells where the pixels are.
constexpr unsigned kTold[] = {
    EXIF_TAG_IMAGE_DESCRIPTION,
    EXIF_TAG_MAKE,
    EXIF_TAG_MODEL,
    EXIF_TAG_SOFTWARE,
    EXIF_TAG_DATE_TIME,
    EXIF_TAG_ARTIST,
    EXIF_TAG_COPYRIGHT,
    EXIF_TAG_XP_TITLE,
    EXIF_TAG_XP_COMMENT,
    EXIF_TAG_XP_AUTHOR,
    EXIF_TAG_XP_KEYWORDS,
    EXIF_TAG_XP_SUBJECT,
    0x013C,  // the computer
    0x4746,  // the user's rating, and in percent
    0x4749,
};
// Kept as well, but no reason to write anything.
constexpr unsigned kAboutPixels[] = {EXIF_TAG_ORIENTATION, EXIF_TAG_X_RESOLUTION,
                                     EXIF_TAG_Y_RESOLUTION, EXIF_TAG_RESOLUTION_UNIT};

// Of the second one: about the colours and bytes of the first file.
constexpr unsigned kOfFirstFile[] = {
    EXIF_TAG_COMPONENTS_CONFIGURATION,
    EXIF_TAG_COMPRESSED_BITS_PER_PIXEL,
    EXIF_TAG_COLOR_SPACE,
    EXIF_TAG_PIXEL_X_DIMENSION,
    EXIF_TAG_PIXEL_Y_DIMENSION,
    EXIF_TAG_GAMMA,
    0xEA1C,  // padding
};

template <size_t kCount>
bool IsOneOf(const unsigned (&tags)[kCount], const ExifEntry& entry) {
    return std::ranges::find(tags, static_cast<unsigned>(entry.tag)) != std::end(tags);
}

template <typename Condition>
void RemoveIf(ExifContent& directory, const Condition& condition) {
    for (unsigned i = directory.count; i-- > 0;) {
        if (condition(*directory.entries[i])) {
            exif_content_remove_entry(&directory, directory.entries[i]);
        }
    }
}

void Clear(ExifContent& directory) {
    RemoveIf(directory, [](const ExifEntry&) { return true; });
}

struct FreeEntry {
    void operator()(ExifEntry* entry) const { exif_entry_unref(entry); }
};

// Adds an entry of one number in the form that the library knows for its tag.
void AddNumber(ExifData& data, ExifTag tag, uint32_t number) {
    ExifContent* const directory = data.ifd[EXIF_IFD_EXIF];
    const std::unique_ptr<ExifEntry, FreeEntry> entry(exif_entry_new());
    if (entry == nullptr) return;
    exif_content_add_entry(directory, entry.get());
    exif_entry_initialize(entry.get(), tag);
    const ExifByteOrder order = exif_data_get_byte_order(&data);
    if (entry->format == EXIF_FORMAT_SHORT && entry->size >= 2) {
        exif_set_short(entry->data, order, static_cast<ExifShort>(number));
    } else if (entry->format == EXIF_FORMAT_LONG && entry->size >= 4) {
        exif_set_long(entry->data, order, number);
    }
}

void PutUpright(ExifData& data) {
    ExifContent* const directory = data.ifd[EXIF_IFD_0];
    ExifEntry* const entry = exif_content_get_entry(directory, EXIF_TAG_ORIENTATION);
    if (entry == nullptr) return;
    if (entry->format == EXIF_FORMAT_SHORT && entry->size >= 2) {
        exif_set_short(entry->data, exif_data_get_byte_order(&data), kUpright);
    } else {
        exif_content_remove_entry(directory, entry);
    }
}

void DropThumbnail(ExifData& data) {
    Clear(*data.ifd[EXIF_IFD_1]);
    std::free(data.data);  // as the library does it
    data.data = nullptr;
    data.size = 0;
}

bool HasSomethingToTell(const ExifData& data) {
    const ExifContent& first = *data.ifd[EXIF_IFD_0];
    const bool tells = std::any_of(first.entries, first.entries + first.count,
                                   [](const ExifEntry* entry) { return IsOneOf(kTold, *entry); });
    return tells || data.ifd[EXIF_IFD_EXIF]->count != 0 || data.ifd[EXIF_IFD_GPS]->count != 0;
}

// Without the name.
std::vector<uint8_t> Written(ExifData& data) {
    unsigned char* bytes = nullptr;
    unsigned size = 0;
    exif_data_save_data(&data, &bytes, &size);
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(bytes, std::free);
    if (bytes == nullptr || size <= sizeof(kExifName)) return {};
    return {bytes + sizeof(kExifName), bytes + size};
}

}  // namespace

std::vector<uint8_t> SavedExif(std::span<const uint8_t> tiff, const SavedPicture& picture) {
    const UniqueExif data = LoadExif(tiff);
    if (data == nullptr) return {};
    ExifContent& exif = *data->ifd[EXIF_IFD_EXIF];
    const auto dropMakerNote = [&] {
        RemoveIf(exif, [](const ExifEntry& entry) { return entry.tag == EXIF_TAG_MAKER_NOTE; });
    };
    DropThumbnail(*data);
    // What it says is the colour space of the first file.
    Clear(*data->ifd[EXIF_IFD_INTEROPERABILITY]);
    RemoveIf(*data->ifd[EXIF_IFD_0], [](const ExifEntry& entry) {
        return !IsOneOf(kTold, entry) && !IsOneOf(kAboutPixels, entry);
    });
    RemoveIf(exif, [](const ExifEntry& entry) { return IsOneOf(kOfFirstFile, entry); });
    if (exif_data_get_mnote_data(data.get()) == nullptr) dropMakerNote();
    if (!picture.keepsPosition) Clear(*data->ifd[EXIF_IFD_GPS]);
    if (!HasSomethingToTell(*data)) return {};
    PutUpright(*data);
    AddNumber(*data, EXIF_TAG_COLOR_SPACE, picture.isSrgb ? kSrgb : kUncalibrated);
    AddNumber(*data, EXIF_TAG_PIXEL_X_DIMENSION, picture.width);
    AddNumber(*data, EXIF_TAG_PIXEL_Y_DIMENSION, picture.height);
    std::vector<uint8_t> bytes = Written(*data);
    if (bytes.size() > kMostSavedExif) {
        dropMakerNote();
        bytes = Written(*data);
    }
    return bytes.size() > kMostSavedExif ? std::vector<uint8_t>() : bytes;
}

}  // namespace tessary::metadata
