// The keys that run commands, as menus show them.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <map>
#include <string>

namespace tessary {

class MenuKeys {
  public:
    // Reads the keys from accelerator tables of the program's resources: what menus show is what
    // works. Of several keys of a command the first counts.
    explicit MenuKeys(std::initializer_list<int> acceleratorTables);

    // Puts the keys behind the captions of a menu's items and of its submenus'. A caption that has
    // its key keeps it.
    void ShowIn(HMENU menu) const;

  private:
    std::map<int, std::wstring> names_;  // of the keys, by command
};

}  // namespace tessary
