// Why nobody knows a file.
#pragma once

#include <string>

#include "convert/file_report.h"

namespace tessary {

// Whether a file is by its name something that lies among pictures and is none: the system's notes
// on a folder, or a text.
bool IsNoPicture(const std::wstring& path);

// The reason why a file of unknown kind is not converted.
FileReason ReasonUnknown(const std::wstring& path);

}  // namespace tessary
