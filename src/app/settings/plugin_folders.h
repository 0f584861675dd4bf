// Plug-in folders that are told by where the program is.
#pragma once

#include <string>

#include "app/settings/modValue.h"

namespace tessary {

// To be called with settings that were just read: plug-in folders that were the program's own
// folder, or below it, when they were stored are now those of where the program is. Settings of
// earlier versions, which did not store where the program was, are brought up to date as far as
// they tell.
void FollowProgram(GeneralSettings& general);

// Whether plug-ins in a folder can write their settings beside themselves: under Program Files only
// administrators can.
bool MayPluginsWriteIn(const std::wstring& folder);

// The user's own folder for plug-ins, in which they can; it may not be there.
std::wstring UserPluginFolder();

// To be called at the start of the viewer: where plug-ins cannot write in the program's own folder,
// the user's is made. One that is there becomes the last plug-in folder, unless the user has chosen
// another.
void OfferUserPluginFolder();
void UseUserPluginFolder(GeneralSettings& general, const std::wstring& folder);

}  // namespace tessary
