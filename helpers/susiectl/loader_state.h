// What a call of the system's loader has come to.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Whether loading a DLL has failed because of the exception: the system contains what happens in a
// DllMain, and answers it as the failure's error. `error` is that of the failed load, `exception`
// the last one that was raised meanwhile, 0 for none. Where the error says only that the DLL could
// not be initialized, a DLL that has met an error, mastered it and refused counts as crashed too.
bool IsCrash(DWORD error, DWORD exception);

// Whether this thread holds the loader: no other thread could load a DLL, begin or end. Only the
// system's own code can let go of it.
bool HoldsLoader();

}  // namespace tessary::susiectl
