// What photographs say of themselves, and dates, on the way into the converted files.
#pragma once

#include <optional>
#include <string>

#include "convert/convert_options.h"
#include "picture/read/read_picture.h"
#include "plugin/file_stamp.h"

namespace tessary {

// Gives what was read of a file what the options want the file that they make of it to have of it:
// EXIF data, its dates. `stamp`: of the file, when its reading began (ExactStampOf); nothing: it
// takes nothing along. From any thread.
void KeepMetadata(ReadResult& read, const std::wstring& path, const std::optional<FileStamp>& stamp,
                  const ConvertOptions& options);
// The same of a picture that knows where it was read.
void KeepMetadata(ReadResult& read, const ConvertOptions& options);

}  // namespace tessary
