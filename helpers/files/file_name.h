// File names as callers give them, and as the system takes them.
#pragma once

#include <string>

namespace tessary::files {

// A file name in UTF-16, from the system's code page or as it is.
std::wstring FileNameOf(const char* name);
std::wstring FileNameOf(const wchar_t* name);

// The full name in the form that the system takes at any length (`\\?\`); empty when the name can
// be no file's: it is empty or names a device.
std::wstring ExtendedFullName(const std::wstring& name);

// Of a full name in that form: the drive or network share, and the folder, with their backslashes.
// The former is empty for names of other kinds.
std::wstring RootOf(const std::wstring& name);
std::wstring FolderOf(const std::wstring& name);

}  // namespace tessary::files
