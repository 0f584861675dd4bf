#include "ui/form/dialog_template.h"

#include <cstring>
#include <string_view>

#include "ui/form/window.h"

namespace tessary {
namespace {

// The template's head up to the menu, as the system documents it (DLGTEMPLATEEX). Then follow menu,
// window class and title, the font, and from the next multiple of 4 on the controls.
constexpr size_t kStyleOffset = 12;  // bytes
constexpr size_t kMenuOffset = 26;

constexpr WORD kNumberFollows = 0xFFFF;

// Words of a resource: a menu or class, which is a number or a text with a NUL.
size_t NameLength(const WORD* name) {
    if (*name == kNumberFollows) return 2;
    return std::wstring_view(reinterpret_cast<const wchar_t*>(name)).size() + 1;
}

size_t AtMultipleOf4(size_t offset) {
    return (offset + 3) / 4 * 4;
}

}  // namespace

std::vector<DWORD> LoadDialogTemplate(int resource, const LOGFONTW& font, int dpi) {
    const HRSRC found = FindResourceW(ProgramInstance(), MAKEINTRESOURCEW(resource), RT_DIALOG);
    if (found == nullptr) return {};
    const auto* const bytes =
        static_cast<const BYTE*>(LockResource(LoadResource(ProgramInstance(), found)));
    const size_t size = SizeofResource(ProgramInstance(), found);

    size_t fontOffset = kMenuOffset;
    for (int name = 0; name < 3; ++name) {  // menu, class, title
        fontOffset += sizeof(WORD) * NameLength(reinterpret_cast<const WORD*>(bytes + fontOffset));
    }
    // Point size, weight, italic and character set stand before the face.
    constexpr size_t kFaceOffset = 6;
    const size_t oldFace =
        sizeof(WORD) * NameLength(reinterpret_cast<const WORD*>(bytes + fontOffset + kFaceOffset));
    const size_t oldItems = AtMultipleOf4(fontOffset + kFaceOffset + oldFace);

    const size_t newFace = sizeof(wchar_t) * (wcslen(font.lfFaceName) + 1);
    const size_t newItems = AtMultipleOf4(fontOffset + kFaceOffset + newFace);

    std::vector<DWORD> block((newItems + size - oldItems + 3) / sizeof(DWORD));
    auto* const out = reinterpret_cast<BYTE*>(block.data());
    std::memcpy(out, bytes, fontOffset);
    DWORD style = 0;
    std::memcpy(&style, bytes + kStyleOffset, sizeof(style));
    style |= DS_SETFONT;
    std::memcpy(out + kStyleOffset, &style, sizeof(style));
    const WORD head[] = {static_cast<WORD>(MulDiv(std::abs(font.lfHeight), 72, dpi)),
                         static_cast<WORD>(font.lfWeight), MAKEWORD(font.lfItalic, font.lfCharSet)};
    std::memcpy(out + fontOffset, head, sizeof(head));
    std::memcpy(out + fontOffset + kFaceOffset, font.lfFaceName, newFace);
    std::memcpy(out + newItems, bytes + oldItems, size - oldItems);
    return block;
}

}  // namespace tessary
