// The life of the program.
#pragma once

#include <cstdint>

#include "app/helper_libraries.h"

namespace tessary {

// Runs the program from its start to its end; the result is the process's exit status.
int Main();

// The chain that makes the program ready for its window: helper libraries, of which `libraries`
// then tells, settings, first-run defaults, plug-ins. No plug-in is asked: those of which nothing
// is remembered wait. False at the first step that fails.
bool InitializeApplication(HelperLibraries& libraries);

// Writes the settings and releases the plug-ins. Always 0.
int16_t TerminateApplication();

}  // namespace tessary
