// Start and end of the library.
#include <windows.h>

#include "helpers/susiectl/guard_context.h"
#include "helpers/susiectl/safety_net.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void* processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        if (!tessary::susiectl::OpenGuardStacks()) return FALSE;
        tessary::susiectl::SpreadSafetyNet();
    } else if (reason == DLL_PROCESS_DETACH && !processEnds) {
        tessary::susiectl::RemoveSafetyNet();
        tessary::susiectl::CloseGuardStacks();
    }
    return TRUE;
}
