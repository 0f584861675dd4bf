// Where the system enters the program.
#include <windows.h>

#include "app/base/error.h"
#include "app/modMain.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    // Before any drive is asked: the system would have the user put a disk into an empty one.
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    return tessary::Trapped(1, [] { return tessary::Main(); });
}
