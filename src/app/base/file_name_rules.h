// Which names the system takes for files and folders (Naming Files in its documentation).
#pragma once

#include <string_view>

namespace tessary {

// Characters that no name has, and separators.
bool IsForbiddenInName(wchar_t character);

// Whether a name is a device's, which stays so with any extension and in any folder.
bool NamesDevice(std::wstring_view name);

// Whether a text can be the name of a file or folder: no separators, wildcards or control
// characters, no device's name, no dot or blank at the end, not too long.
bool IsFileName(std::wstring_view name);

}  // namespace tessary
