// The plug-ins of the whole program, and those of a thread that has its own.
#pragma once

#include "plugin/CollectionSusie.h"

namespace tessary {

// The one collection, created empty at the first call, which is the user-interface thread's; for a
// thread with plug-ins of its own (own_plugins.h) those.
CollectionSusie& SusieCollection();

// Told which plug-in file comes next, `done` of `total` being through, and once more every moment
// while that keeps the loading waiting; may let messages run. False ends the loading: what is
// loaded or remembered stays, the rest waits for the next time (kWaiting).
using LoadingProgress = std::function<bool(const std::wstring& path, int32_t done, int32_t total)>;

// Fills the collection anew from the folders that the settings name; `asking`: who is asked what it
// is, where what plug-ins tell is remembered (CollectionSusie::RememberPlugins). A load switch is
// turned off when there is no plug-in after its folder was scanned to its end, and on otherwise;
// one that was turned off here is looked at again the next time. It stays as it is while its folder
// is away. False after an unexpected error, and, with nothing changed, while a plug-in is being
// called or PluginsAreStopped.
bool LoadSPI(const LoadingProgress& progress = {}, Asking asking = Asking::kAll);
// Goes on with the plug-ins that LoadSPI has left waiting because nobody was to be asked.
bool LoadWaitingSPI(const LoadingProgress& progress);

// Releases the collection with all plug-in libraries; to be called before the process ends. While a
// plug-in is being called nothing is released: the end of the process does it then.
void UnloadSPI();

}  // namespace tessary
