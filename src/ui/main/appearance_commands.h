// The commands that choose between the system's colours and dark ones.
#pragma once

#include "ui/main/command_table.h"

namespace tessary {

// What they choose holds at once in all windows, and in the next run.
void RegisterAppearanceCommands(CommandTable& commands);

}  // namespace tessary
