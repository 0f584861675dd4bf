#include "convert_cli/stop_request.h"

#include <windows.h>

#include <atomic>

#include "plugin/call_log.h"

namespace tessary {
namespace {

// How long the system waits at most for a program whose console is closed.
constexpr DWORD kGraceMilliseconds = 20000;

// The system calls the handler on a thread of its own and passes nothing that leads to an object.
std::atomic<bool> isMade = false;

BOOL WINAPI OnControlEvent(DWORD event) {
    const bool isFirst = !isMade.exchange(true);
    // The system ends the process before this returns when its patience is at its end.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        ExcuseLastCall();
        // The process ends when this returns, or as soon as its own end is reached.
        Sleep(kGraceMilliseconds);
        return FALSE;
    }
    // At once, with the status that the system gives: plug-ins that hang would also hang when they
    // are told of an orderly end.
    if (!isFirst) {
        ExcuseLastCall();
        TerminateProcess(GetCurrentProcess(), static_cast<UINT>(STATUS_CONTROL_C_EXIT));
    }
    return TRUE;
}

}  // namespace

StopRequest::StopRequest() {
    isMade = false;
    // A program with windows is not told of this by the handler.
    session_.emplace([] {
        ExcuseLastCall();
        isMade = true;
    });
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

StopRequest::~StopRequest() {
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
}

bool StopRequest::IsMade() const {
    return isMade;
}

}  // namespace tessary
