// What EXIF data say of a picture.
#pragma once

#include "helpers/metadata/exif_data.h"
#include "helpers/metadata/metadata_field.h"

namespace tessary::metadata {

// Appends what the entries say that people want to know. `data` is not null.
void AddExifFields(const UniqueExif& data, Fields& fields);

}  // namespace tessary::metadata
