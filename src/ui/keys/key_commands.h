// The commands whose keys the user may choose.
#pragma once

#include <span>

namespace tessary {

struct KeyCommand {
    int id;                  // command… or menu… of resource.h
    const wchar_t* key;      // in the settings store; stays what it is
    const wchar_t* caption;  // for the user
};

// In the order in which they are listed.
std::span<const KeyCommand> KeyCommands();

}  // namespace tessary
