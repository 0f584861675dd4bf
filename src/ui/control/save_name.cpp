#include "ui/control/save_name.h"

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/member_file_name.h"

namespace tessary {
namespace {

constexpr wchar_t kNameless[] = L"無題";

std::optional<SaveFormat> FormatOfExtension(const std::wstring& upperExtension) {
    if (upperExtension == L"BMP" || upperExtension == L"DIB") return SaveFormat::kBMP;
    if (upperExtension == L"PNG") return SaveFormat::kPNG;
    for (const wchar_t* const jpeg : {L"JPG", L"JPEG", L"JPE", L"JFIF"}) {
        if (upperExtension == jpeg) return SaveFormat::kJPEG;
    }
    return std::nullopt;
}

// A dot at a name's start begins no extension.
size_t ExtensionStart(const std::wstring& name) {
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos || dot == 0 ? name.size() : dot;
}

}  // namespace

std::optional<SaveFormat> FormatOfName(const std::wstring& name) {
    return FormatOfExtension(UpperExtensionOf(name));
}

const wchar_t* ExtensionOf(SaveFormat format) {
    switch (format) {
        case SaveFormat::kBMP:
            return L"bmp";
        case SaveFormat::kPNG:
            return L"png";
        case SaveFormat::kJPEG:
            break;
    }
    return L"jpg";
}

std::wstring WithExtensionOf(SaveFormat format, const std::wstring& name) {
    const std::optional<SaveFormat> own = FormatOfName(name);
    if (own == format) return name;
    const std::wstring stem = own ? name.substr(0, name.rfind(L'.')) : name;
    return stem + L'.' + ExtensionOf(format);
}

std::wstring ProposedStem(const std::wstring& pictureName) {
    std::wstring stem = pictureName.substr(pictureName.find_last_of(L"\\/") + 1);
    stem.resize(ExtensionStart(stem));
    if (stem.find_first_not_of(L" .") == std::wstring::npos) return kNameless;
    return SafeMemberName(stem).value_or(kNameless);
}

}  // namespace tessary
