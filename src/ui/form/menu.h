// Menus by the numbers of their items.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "app/base/handles.h"

namespace tessary {

// A menu resource of the program; empty when there is none of that number.
UniqueMenu LoadMenuResource(int resource);

// Visits the command items of a menu and of its submenus, in order; neither separators nor the
// submenus themselves.
void ForEachMenuCommand(HMENU menu, const std::function<void(int id)>& visit);

// Greys or enables, and checks or unchecks, an item of the menu or of its submenus.
void SetMenuItemState(HMENU menu, int id, bool enabled, bool checked);

// Caption of an item of the menu or of its submenus, with its mnemonic's `&`; empty when it has
// none.
std::wstring MenuCaption(HMENU menu, int id);
void SetMenuCaption(HMENU menu, int id, const std::wstring& caption);

// A text as a caption that shows it as it is, `&` included.
std::wstring AsMenuCaption(const std::wstring& text);

}  // namespace tessary
