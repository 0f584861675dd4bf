// The finished program's parts for benchmarks, which stand in a folder beside its own.
#pragma once

#include <string>

#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "tests/support/helper_libraries.h"

namespace tessary::bench {

using test::FinishedFolder;
using test::LoadHelperLibraries;

inline void LoadPluginsOf(const std::wstring& folder) {
    Values().general.useSPI = 1;
    Values().general.spiFolder[0] = folder;
    Values().general.loadSPI[0] = true;
    LoadSPI();
}

}  // namespace tessary::bench
