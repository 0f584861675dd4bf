// What a first run sets up.
#pragma once

namespace tessary {

// What UseFirstRunDefaults does, on any run.
void SetFirstRunDefaults();

// On a first run: switches plug-ins on, makes the application folder plug-in folder 1, the Susie
// viewer's folder, where that viewer is set up, plug-in folder 2, and the user's own, where there
// is one, plug-in folder 3. False on any other run. Stores nothing.
bool UseFirstRunDefaults();

// The same, and stores them. Marks the first run as done. On any run offers the user's own plug-in
// folder where the application folder is not for plug-ins to write to. Always true.
bool ApplyFirstRunDefaults();

}  // namespace tessary
