// What lies among pictures and is none.
#pragma once

#include <string>

namespace tessary {

// Whether a file is by its name something that lies among pictures and is none: the system's notes
// on a folder, a text, a film, a program … To be asked only about files that no plug-in takes, or
// names in its patterns.
bool IsNoPicture(const std::wstring& path);

}  // namespace tessary
