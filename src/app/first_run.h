// What a first run sets up.
#pragma once

namespace tessary {

// What UseFirstRunDefaults does, on any run.
void SetFirstRunDefaults();

// On a first run: switches plug-ins on, makes the application folder plug-in folder 1 and the Susie
// viewer's folder, where that viewer is set up, plug-in folder 2. False on any other run. Stores
// nothing.
bool UseFirstRunDefaults();

// The same, and stores them. Marks the first run as done. Always true.
bool ApplyFirstRunDefaults();

}  // namespace tessary
