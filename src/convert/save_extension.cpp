#include "convert/save_extension.h"

#include "app/base/text.h"

namespace tessary {
namespace {

constexpr uint16_t kFewColorsDepth = 8;  // and below
constexpr uint16_t kManyColorsDepth = 24;

}  // namespace

const SaverFormat* SaveFormat(uint16_t bitsPerPixel, const ConvertSettings& settings) {
    return SaverFormatAt(bitsPerPixel > kFewColorsDepth ? settings.saveType2 : settings.saveType1);
}

std::wstring SaveExtension(uint16_t bitsPerPixel, const ConvertSettings& settings) {
    const SaverFormat* const format = SaveFormat(bitsPerPixel, settings);
    return format != nullptr ? format->Extension() : std::wstring();
}

bool TakesOwnColors(const ConvertSettings& settings, const saving::SaveOptions& options) {
    const SaverFormat* const format = SaveFormat(kManyColorsDepth, settings);
    return format != nullptr && format->KeepsProfile(options);
}

std::optional<std::wstring> OnlySaveExtension(const ConvertSettings& settings) {
    const bool isOne = settings.saveType1 == settings.saveType2;
    return isOne ? std::optional(SaveExtension(kFewColorsDepth, settings)) : std::nullopt;
}

bool IsSaveExtension(std::wstring_view extension, const ConvertSettings& settings) {
    return EqualsIgnoreCase(extension, SaveExtension(kFewColorsDepth, settings)) ||
           EqualsIgnoreCase(extension, SaveExtension(kManyColorsDepth, settings));
}

}  // namespace tessary
