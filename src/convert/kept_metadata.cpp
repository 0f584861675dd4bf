#include "convert/kept_metadata.h"

#include "convert/save_extension.h"
#include "picture/metadata/picture_metadata.h"

namespace tessary {

void KeepMetadata(ReadResult& read, const ConvertOptions& options) {
    if (!read.picture) return;
    const SaverFormat* const format = SaveFormat(read.picture.Header().bitCount, options.convert);
    if (format != nullptr) read.picture = WithMetadata(read.picture, *format, options.save);
}

void KeepMetadata(ReadResult& read, const std::wstring& path, const std::optional<FileStamp>& stamp,
                  const ConvertOptions& options) {
    if (!stamp || (read.kind != kFilePicture && options.save.keepDates == 0)) return;
    TellOrigin(read, {.path = path, .stamp = *stamp});
    KeepMetadata(read, options);
}

}  // namespace tessary
