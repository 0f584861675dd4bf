#include "convert/save_extension.h"

#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "app/settings/saver_format.h"

namespace tessary {
namespace {

constexpr uint16_t kFewColorsDepth = 8;  // and below
constexpr uint16_t kManyColorsDepth = 24;

}  // namespace

std::wstring SaveExtension(uint16_t bitsPerPixel) {
    const ConvertSettings& settings = Values().convert;
    const SaverFormat* const format =
        SaverFormatAt(bitsPerPixel > kFewColorsDepth ? settings.saveType2 : settings.saveType1);
    return format != nullptr ? format->Extension() : std::wstring();
}

std::optional<std::wstring> OnlySaveExtension() {
    const bool isOne = Values().convert.saveType1 == Values().convert.saveType2;
    return isOne ? std::optional(SaveExtension(kFewColorsDepth)) : std::nullopt;
}

bool IsSaveExtension(std::wstring_view extension) {
    return EqualsIgnoreCase(extension, SaveExtension(kFewColorsDepth)) ||
           EqualsIgnoreCase(extension, SaveExtension(kManyColorsDepth));
}

}  // namespace tessary
