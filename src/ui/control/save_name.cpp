#include "ui/control/save_name.h"

#include "plugin/member_file_name.h"

namespace tessary {
namespace {

constexpr wchar_t kNameless[] = L"無題";
constexpr wchar_t kSpread[] = L"_見開き";

// A dot at a name's start begins no extension.
size_t ExtensionStart(const std::wstring& name) {
    const size_t dot = name.rfind(L'.');
    return dot == std::wstring::npos || dot == 0 ? name.size() : dot;
}

}  // namespace

std::wstring WithExtensionOf(const SaverFormat& format, const std::wstring& name) {
    const SaverFormat* const own = SaverFormatOf(name);
    if (own == &format) return name;
    const std::wstring stem = own != nullptr ? name.substr(0, name.rfind(L'.')) : name;
    return stem + format.Extension();
}

std::wstring ProposedStem(const std::wstring& pictureName, uint32_t page, bool isSpread) {
    std::wstring stem = pictureName.substr(pictureName.find_last_of(L"\\/") + 1);
    stem.resize(ExtensionStart(stem));
    if (stem.find_first_not_of(L" .") == std::wstring::npos) stem = kNameless;
    if (page != 0) stem += L'_' + std::to_wstring(page);
    if (isSpread) stem += kSpread;
    return SafeMemberName(stem).value_or(kNameless);
}

}  // namespace tessary
