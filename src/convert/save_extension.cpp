#include "convert/save_extension.h"

#include "app/base/text.h"
#include "app/settings/modValue.h"

namespace tessary {
namespace {

constexpr uint16_t kFewColorsDepth = 8;  // and below
constexpr uint16_t kManyColorsDepth = 24;

}  // namespace

const wchar_t* SaveExtension(uint16_t bitsPerPixel) {
    const ConvertSettings& settings = Values().convert;
    switch (bitsPerPixel > kFewColorsDepth ? settings.saveType2 : settings.saveType1) {
        case 0:
            return L".bmp";
        case 1:
            return L".png";
        case 2:
            return L".jpg";
        default:
            return L"";
    }
}

const wchar_t* OnlySaveExtension() {
    const bool isOne = Values().convert.saveType1 == Values().convert.saveType2;
    return isOne ? SaveExtension(kFewColorsDepth) : nullptr;
}

bool IsSaveExtension(std::wstring_view extension) {
    return EqualsIgnoreCase(extension, SaveExtension(kFewColorsDepth)) ||
           EqualsIgnoreCase(extension, SaveExtension(kManyColorsDepth));
}

}  // namespace tessary
