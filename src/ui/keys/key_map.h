// Which key runs which command: as the program brings it, and as the user has chosen.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <vector>

#include "ui/keys/key_stroke.h"

namespace tessary {

// The keys of each command of KeyCommands(), the one that menus show first. No key has two.
using KeyMap = std::map<int, std::vector<KeyStroke>>;

// As in the program's resources.
const KeyMap& UsualKeys();

// As the user has chosen: the section `Keys` of the settings store has a value for each command
// that differs. Read when they are first asked for. A key that is stored for two commands is the
// first one's.
const KeyMap& ChosenKeys();
// Reads them anew.
void ReadChosenKeys();
// Puts them to work at once, and into the store; where that does not take them they last as long as
// the program.
void ChooseKeys(const KeyMap& keys);

// The command that has the key; nothing for none.
std::optional<int> CommandOf(const KeyMap& keys, const KeyStroke& stroke);
// Gives a command a key, as its first one; whoever had it has lost it.
void Assign(KeyMap& keys, int command, const KeyStroke& stroke);

// The chosen keys and those that nobody chooses, for TranslateAccelerator. To be asked for anew for
// each message: it is another one when other keys are chosen.
HACCEL ChosenAccelerators();

}  // namespace tessary
