// The extensions of what is written.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/settings/modValue.h"

namespace tessary {

// With its dot, of the format that the user wants for pictures of that many bits per pixel; empty
// for a setting that names none.
std::wstring SaveExtension(uint16_t bitsPerPixel, const ConvertSettings& settings);

// The one extension of all pictures; nothing when it depends on the picture.
std::optional<std::wstring> OnlySaveExtension(const ConvertSettings& settings);

// Whether pictures may be written with that extension, in whatever case.
bool IsSaveExtension(std::wstring_view extension, const ConvertSettings& settings);

}  // namespace tessary
