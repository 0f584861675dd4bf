// Why the system does not load a library that is there.
#pragma once

#include <windows.h>

#include <string>

namespace tessary {

// Whether the system or a virus scanner keeps the file from being loaded, whatever is in it.
bool IsBlockedBySystem(DWORD error);

// The reason for the user, without a full stop, with the error's number; "" for none (0).
std::wstring LoadRefusalText(DWORD error);

}  // namespace tessary
