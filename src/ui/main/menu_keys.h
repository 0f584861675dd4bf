// The keys that run commands, as menus show them.
#pragma once

#include <windows.h>

namespace tessary {

// Puts the keys that work now behind the captions of a menu's items and of its submenus', in place
// of those that stand there; of several keys of a command the first.
void ShowKeysIn(HMENU menu);

}  // namespace tessary
