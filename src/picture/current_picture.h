// The one picture that the main window shows.
#pragma once

#include <string>

#include "picture/picture.h"

namespace tessary {

// The current picture, which is owned here; empty: there is none, or its memory was freed by
// somebody else.
const Picture& CurrentPicture();

// What is wrong with it when only a part of its file could be read, one line for the user; else
// empty.
const std::wstring& CurrentPictureDamage();

// Frees the current picture and takes over the new one; an empty one leaves no current picture.
void SetCurrentPicture(Picture picture, std::wstring damage = {});

}  // namespace tessary
