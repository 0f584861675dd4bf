// Why nobody knows a file.
#pragma once

#include <string>

#include "convert/file_report.h"

namespace tessary {

// Whether a file is by its name something that lies among pictures and is none: the system's notes
// on a folder, a text, a film, a program … To be asked only about files that no plug-in takes.
bool IsNoPicture(const std::wstring& path);

// The reason why a file of unknown kind is not converted.
FileReason ReasonUnknown(const std::wstring& path);

}  // namespace tessary
