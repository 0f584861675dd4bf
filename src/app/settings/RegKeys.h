// Single text values of any registry key. Neither routine ever shows a message.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace tessary {

// The text of a value: of a string or an expandable string (not expanded) its text up to the first
// NUL, of a 32-bit number its decimal form. Empty when the value is missing, of another type or
// longer than 1024 characters.
std::wstring GetRegistryString(HKEY root, std::wstring_view subKey, std::wstring_view valueName);

// Writes a string value, creating the key when needed; an empty text is stored as one blank.
// Whether it was written.
bool SetRegistryString(HKEY root, std::wstring_view subKey, std::wstring_view valueName,
                       std::wstring_view text);

}  // namespace tessary
