#include "ui/main/menu_keys.h"

#include <vector>

#include "ui/form/menu.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

std::wstring KeyName(UINT key) {
    if ((key >= L'0' && key <= L'9') || (key >= L'A' && key <= L'Z')) {
        return {static_cast<wchar_t>(key)};
    }
    if (key >= VK_F1 && key <= VK_F24) return L"F" + std::to_wstring(key - VK_F1 + 1);
    // As they stand on keyboards; the system's names are those of the number pad's.
    if (key == VK_RETURN) return L"Enter";
    if (key == VK_DELETE) return L"Delete";
    if (key == VK_HOME) return L"Home";
    if (key == VK_END) return L"End";
    if (key == VK_ADD) return L"+";
    if (key == VK_SUBTRACT) return L"-";
    wchar_t name[40]{};
    GetKeyNameTextW(static_cast<LONG>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC)) << 16, name, 40);
    return name;
}

std::wstring KeyName(const ACCEL& key) {
    std::wstring name;
    if ((key.fVirt & FCONTROL) != 0) name += L"Ctrl+";
    if ((key.fVirt & FALT) != 0) name += L"Alt+";
    if ((key.fVirt & FSHIFT) != 0) name += L"Shift+";
    return name + KeyName(UINT{key.key});
}

}  // namespace

MenuKeys::MenuKeys(std::initializer_list<int> acceleratorTables) {
    for (const int resource : acceleratorTables) {
        const HACCEL table = LoadAcceleratorsW(ProgramInstance(), MAKEINTRESOURCEW(resource));
        std::vector<ACCEL> keys(CopyAcceleratorTableW(table, nullptr, 0));
        CopyAcceleratorTableW(table, keys.data(), static_cast<int>(keys.size()));
        for (const ACCEL& key : keys)
            names_.try_emplace(key.cmd, KeyName(key));
    }
}

void MenuKeys::ShowIn(HMENU menu) const {
    ForEachMenuCommand(menu, [&](int id) {
        const auto found = names_.find(id);
        if (found == names_.end()) return;
        const std::wstring caption = MenuCaption(menu, id);
        if (caption.find(L'\t') != std::wstring::npos) return;
        SetMenuCaption(menu, id, caption + L'\t' + found->second);
    });
}

}  // namespace tessary
