// The formats of what is written, and their extensions.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "app/settings/modValue.h"
#include "app/settings/saver_format.h"

namespace tessary {

// The format that the user wants for pictures of that many bits per pixel; null for a setting that
// names none.
const SaverFormat* SaveFormat(uint16_t bitsPerPixel, const ConvertSettings& settings);
// Its extension, with its dot; empty for none.
std::wstring SaveExtension(uint16_t bitsPerPixel, const ConvertSettings& settings);

// Whether pictures of many colours may stay in their own (ReadWatch::takesOwnColors).
bool TakesOwnColors(const ConvertSettings& settings, const saving::SaveOptions& options);

// The one extension of all pictures; nothing when it depends on the picture.
std::optional<std::wstring> OnlySaveExtension(const ConvertSettings& settings);

// Whether pictures may be written with that extension, in whatever case.
bool IsSaveExtension(std::wstring_view extension, const ConvertSettings& settings);

}  // namespace tessary
