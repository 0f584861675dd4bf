// What a picture's file says of it, and takes along into another file.
#pragma once

#include <optional>

#include "app/settings/saver_format.h"
#include "helpers/saving/save_options.h"
#include "host/metadata_host.h"
#include "picture/metadata/picture_origin.h"

namespace tessary {

// Empty when the file, or the archive, has changed since the picture was read. Takes its time, a
// few seconds at most; on any thread. `saved`: as MetadataQuery has it.
MetadataAnswer MetadataOf(const PictureOrigin& origin, const metadata::SavedPicture& saved = {},
                          const std::shared_ptr<MetadataHost>& host = SharedMetadataHost());

// What a picture takes along into another file.
struct KeptMetadata {
    std::vector<uint8_t> exif{};
    files::FileDates dates{};
};

struct KeptWish {
    metadata::SavedPicture saved{};  // without a width: no EXIF data
    bool dates = false;
};

// What is to be asked for when a picture is saved in a format; nothing: it takes nothing along, or
// nobody knows where it was read.
std::optional<KeptWish> WishFor(const Picture& picture, const SaverFormat& format,
                                const saving::SaveOptions& options);

// As long as MetadataOf.
KeptMetadata KeptOf(const PictureOrigin& origin, const KeptWish& wish);

// The same picture with what the format's file is to have of the picture's own, where the options
// want that; without anything when it does not know where it was read. As long as that.
Picture WithMetadata(const Picture& picture, const SaverFormat& format,
                     const saving::SaveOptions& options);

}  // namespace tessary
