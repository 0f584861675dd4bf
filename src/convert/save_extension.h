// The extensions of what is written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessary {

// With its dot, of the format that the user wants for pictures of that many bits per pixel; empty
// for a setting that names none.
std::wstring SaveExtension(uint16_t bitsPerPixel);

// The one extension of all pictures; nothing when it depends on the picture.
std::optional<std::wstring> OnlySaveExtension();

// Whether pictures may be written with that extension, in whatever case.
bool IsSaveExtension(std::wstring_view extension);

}  // namespace tessary
