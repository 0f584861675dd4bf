// Where dialogs for files and folders begin.
#pragma once

#include <initializer_list>
#include <string>

namespace tessary {

// The first of these remembered folders that the user has chosen himself. What a first run puts
// into the settings, the program's own folder, is no place for pictures and is passed over. Empty
// when there is none: the system's choice.
std::wstring FirstChosenFolder(std::initializer_list<const std::wstring*> folders);

}  // namespace tessary
