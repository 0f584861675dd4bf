// The one picture that the main window shows.
#pragma once

#include <string>

#include "picture/modMemory.h"

namespace tessary {

// The current picture; still owned here.
const PicturePair& CurrentPicture();

// What is wrong with it when only a part of its file could be read, one line for the user; else
// empty.
const std::wstring& CurrentPictureDamage();

// Frees the current picture's blocks and takes over the new pair; an empty pair leaves no current
// picture.
void SetCurrentPicture(PicturePair picture, std::wstring damage = {});

}  // namespace tessary
