// Hooks that stay in the process of whoever sets them.
#pragma once

#include <windows.h>

namespace tessary {

// Has a library that asks the system for a hook on all threads, or on one of another process, get
// one on its own thread: the system would load the library into every program with windows, this
// host's program among them. Hooks that the system calls where they were set stay as they are.
// Behind the loading of the library, before its code runs.
void KeepHooksHere(HMODULE module);

}  // namespace tessary
