// Plug-in folders that are told by where the program is.
#pragma once

#include "app/settings/modValue.h"

namespace tessary {

// To be called with settings that were just read: plug-in folders that were the program's own
// folder, or below it, when they were stored are now those of where the program is. Settings of
// earlier versions, which did not store where the program was, are brought up to date as far as
// they tell.
void FollowProgram(GeneralSettings& general);

}  // namespace tessary
