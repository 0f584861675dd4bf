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

// What is to be asked for when a picture is saved in a format; nothing: it takes no EXIF data
// along, or nobody knows where it was read.
std::optional<metadata::SavedPicture> WishFor(const Picture& picture, const SaverFormat& format,
                                              const saving::SaveOptions& options);

// The same picture with the EXIF data that the format's file is to have, where the options want
// them; without any when it does not know where it was read. As long as that.
Picture WithMetadata(const Picture& picture, const SaverFormat& format,
                     const saving::SaveOptions& options);

}  // namespace tessary
