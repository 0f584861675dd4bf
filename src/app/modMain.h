// The life of the program.
#pragma once

#include <cstdint>

#include "app/helper_libraries.h"
#include "plugin/modSusie.h"

namespace tessary {

// Runs the program from its start to its end; the result is the process's exit status.
int Main();

// The chain that makes the program ready for its window: helper libraries, of which `libraries`
// then tells, settings, first-run defaults, plug-ins, whose loading `progress` is told about. False
// at the first step that fails.
bool InitializeApplication(HelperLibraries& libraries, const LoadingProgress& progress = {});

// Writes the settings and releases the plug-ins. Always 0.
int16_t TerminateApplication();

}  // namespace tessary
