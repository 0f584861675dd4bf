// Libraries that come into the process.
#pragma once

#include <windows.h>

#include <functional>

namespace tessary {

// Has `tell` called for each library that the system loads from now on, when it is in its place and
// before code of its own runs: under the loader's lock, in which little is allowed, and on any
// thread. Once per process.
void WatchModules(std::function<void(HMODULE module)> tell);

}  // namespace tessary
