// Where the system enters the program.
#include <windows.h>

#include "app/base/error.h"
#include "app/modMain.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int) {
    return tessary::Trapped(1, [] { return tessary::Main(); });
}
