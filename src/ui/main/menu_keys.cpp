#include "ui/main/menu_keys.h"

#include <map>
#include <string>

#include "res/resource.h"
#include "ui/form/accelerators.h"
#include "ui/form/menu.h"
#include "ui/keys/key_map.h"

namespace tessary {

void ShowKeysIn(HMENU menu) {
    const KeyMap& chosen = ChosenKeys();
    std::map<int, KeyStroke> fixed;
    for (const ACCEL& key : KeysOfResource(acceleratorsClipboard))
        fixed.try_emplace(key.cmd, key.key, static_cast<BYTE>(key.fVirt & ~FVIRTKEY));
    ForEachMenuCommand(menu, [&](int id) {
        const auto keys = chosen.find(id);
        const auto other = fixed.find(id);
        if (keys == chosen.end() && other == fixed.end()) return;
        const std::wstring caption = MenuCaption(menu, id);
        std::wstring wanted = caption.substr(0, caption.find(L'\t'));
        if (keys == chosen.end()) {
            wanted += L'\t' + NameOf(other->second);
        } else if (!keys->second.empty()) {
            wanted += L'\t' + NameOf(keys->second.front());
        }
        if (wanted != caption) SetMenuCaption(menu, id, wanted);
    });
}

}  // namespace tessary
