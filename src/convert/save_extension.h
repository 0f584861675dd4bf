// The extensions of what is written.
#pragma once

#include <cstdint>
#include <string_view>

namespace tessary {

// With its dot, of the format that the user wants for pictures of that many bits per pixel; empty
// for a setting that names none.
const wchar_t* SaveExtension(uint16_t bitsPerPixel);

// The one extension of all pictures; null when it depends on the picture.
const wchar_t* OnlySaveExtension();

// Whether pictures may be written with that extension, in whatever case.
bool IsSaveExtension(std::wstring_view extension);

}  // namespace tessary
