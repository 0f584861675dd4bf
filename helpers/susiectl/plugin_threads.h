// The threads that plug-ins start: one that still runs when its plug-in is freed ends the process,
// and no guard can help it.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Whether a thread runs, or is about to, that began in the module's code. Threads that a run-time
// library in a file of its own starts for the module are not known.
bool RunsThreads(HMODULE module);

}  // namespace tessary::susiectl
