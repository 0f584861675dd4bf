// The real helper libraries for a test program, whose folder is not theirs.
#pragma once

#include <windows.h>

#include "tests/support/finished_folder.h"

namespace tessary::test {

// Makes the helper libraries resident, as the program's start-up does.
inline void LoadHelperLibraries() {
    for (const wchar_t* name :
         {L"pic_kernel.dll", L"plg_resize.fplg", L"bmp_import.iplg", L"bmp_export.eplg",
          L"convertdib.dll", L"dcpng.dll", L"dcjpeg.dll", L"susiectl.dll"}) {
        LoadLibraryW((FinishedFolder() + name).c_str());
    }
}

}  // namespace tessary::test
