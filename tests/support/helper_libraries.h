// The real helper libraries for a test program, which stands beside the finished application
// folder.
#pragma once

#include <windows.h>

#include "app/base/modGetFolder.h"

namespace tessary::test {

// The finished application folder, with a trailing backslash.
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

}  // namespace tessary::test
