// The controls that the Tab key goes to.
#pragma once

#include <windows.h>

#include <vector>

namespace tessary {

// A window's own controls that are tab stops and can have the focus now, in the order of Tab.
std::vector<HWND> TabStops(HWND parent);

}  // namespace tessary
