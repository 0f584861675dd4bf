// The plug-ins of the whole program.
#pragma once

#include "plugin/CollectionSusie.h"

namespace tessary {

// The one collection; created empty at the first call. The user-interface thread's.
CollectionSusie& SusieCollection();

// Fills the collection anew from the folders that the settings name. A load switch is turned off
// when there is no plug-in after its folder was scanned, and on otherwise. False after an
// unexpected error, and while a plug-in is being called: then nothing is changed.
bool LoadSPI();

// Releases the collection with all plug-in libraries; to be called before the process ends. While a
// plug-in is being called nothing is released: the end of the process does it then.
void UnloadSPI();

}  // namespace tessary
