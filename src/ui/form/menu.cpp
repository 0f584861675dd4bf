#include "ui/form/menu.h"

#include "ui/form/window.h"

namespace tessary {

UniqueMenu LoadMenuResource(int resource) {
    return UniqueMenu(LoadMenuW(ProgramInstance(), MAKEINTRESOURCEW(resource)));
}

void ForEachMenuCommand(HMENU menu, const std::function<void(int id)>& visit) {
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        MENUITEMINFOW item{};
        item.cbSize = sizeof(item);
        item.fMask = MIIM_FTYPE | MIIM_ID | MIIM_SUBMENU;
        if (!GetMenuItemInfoW(menu, position, TRUE, &item)) continue;
        if (item.hSubMenu != nullptr) {
            ForEachMenuCommand(item.hSubMenu, visit);
        } else if ((item.fType & MFT_SEPARATOR) == 0) {
            visit(static_cast<int>(item.wID));
        }
    }
}

void SetMenuItemState(HMENU menu, int id, bool enabled, bool checked) {
    EnableMenuItem(menu, id, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
    CheckMenuItem(menu, id, MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
}

std::wstring MenuCaption(HMENU menu, int id) {
    const int length = GetMenuStringW(menu, id, nullptr, 0, MF_BYCOMMAND);
    std::wstring caption(length + 1, L'\0');
    caption.resize(GetMenuStringW(menu, id, caption.data(), length + 1, MF_BYCOMMAND));
    return caption;
}

void SetMenuCaption(HMENU menu, int id, const std::wstring& caption) {
    MENUITEMINFOW item{};
    item.cbSize = sizeof(item);
    item.fMask = MIIM_STRING;
    item.dwTypeData = const_cast<wchar_t*>(caption.c_str());  // only read
    SetMenuItemInfoW(menu, id, FALSE, &item);
}

std::wstring AsMenuCaption(const std::wstring& text) {
    std::wstring caption;
    for (const wchar_t character : text) {
        if (character == L'&') caption += L'&';
        // A tab would start the column of shortcuts.
        caption += character == L'\t' ? L' ' : character;
    }
    return caption;
}

}  // namespace tessary
