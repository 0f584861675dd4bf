#include "convert_cli/stop_request.h"

#include <windows.h>

#include <atomic>

namespace tessary {
namespace {

// The system calls the handler on a thread of its own and passes nothing that leads to an object.
std::atomic<bool> isMade = false;

BOOL WINAPI OnControlEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    return isMade.exchange(true) ? FALSE : TRUE;
}

}  // namespace

StopRequest::StopRequest() {
    isMade = false;
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

StopRequest::~StopRequest() {
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
}

bool StopRequest::IsMade() const {
    return isMade;
}

}  // namespace tessary
