// The finished program's parts for benchmarks, which stand in a folder beside its own.
#pragma once

#include <windows.h>

#include <string>

#include "app/base/modGetFolder.h"
#include "app/settings/modValue.h"
#include "plugin/modSusie.h"

namespace tessary::bench {

inline std::wstring FinishedFolder() {
    return AppFolder() + LR"(..\bin\)";
}

// Makes the helper libraries resident, as the program's start-up does.
inline void LoadHelperLibraries() {
    for (const wchar_t* name : {L"pic_kernel.dll", L"plg_resize.fplg", L"bmp_import.iplg",
                                L"bmp_export.eplg", L"convertdib.dll", L"susiectl.dll"}) {
        LoadLibraryW((FinishedFolder() + name).c_str());
    }
}

inline void LoadPluginsOf(const std::wstring& folder) {
    Values().general.useSPI = 1;
    Values().general.spiFolder[0] = folder;
    Values().general.loadSPI[0] = true;
    LoadSPI();
}

}  // namespace tessary::bench
