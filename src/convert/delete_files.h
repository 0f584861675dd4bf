// Deleting files by name or pattern.
#pragma once

#include <string>

namespace tessary {

// Lists what the pattern matches in its folder, hidden, system and read-only files included, and
// with `force` deletes each match that is not a folder, whatever its attributes. Without `force`
// nothing is changed. A name without wildcards means just this file, not one whose short name it
// is. Always true.
bool DeleteFiles(const std::wstring& pattern, bool force);

}  // namespace tessary
