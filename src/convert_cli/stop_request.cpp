#include "convert_cli/stop_request.h"

#include <windows.h>

#include <atomic>
#include <utility>

#include "app/base/error.h"
#include "convert_cli/console_program.h"

namespace tessary {
namespace {

// How long the system waits at most for a program whose console is closed.
constexpr DWORD kGraceMilliseconds = 20000;

// The system calls the handler on a thread of its own and passes nothing that leads to an object.
std::atomic<bool> isMade = false;
std::atomic<const std::function<void()>*> lastWord = nullptr;

BOOL WINAPI OnControlEvent(DWORD event) {
    const bool isFirst = !isMade.exchange(true);
    // The system ends the process before this returns when its patience is at its end.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        // The process ends when this returns, or as soon as its own end is reached.
        Sleep(kGraceMilliseconds);
        return FALSE;
    }
    // At once: what the run waits for, as a drive of a network, may hang.
    if (!isFirst) {
        if (const std::function<void()>* const word = lastWord) Trapped(*word);
        TerminateProcess(GetCurrentProcess(), kExitStopped);
    }
    return TRUE;
}

}  // namespace

StopRequest::StopRequest(std::function<void()> endsAtOnce) : endsAtOnce_(std::move(endsAtOnce)) {
    isMade = false;
    lastWord = &endsAtOnce_;
    // A program with windows is not told of this by the handler.
    session_.emplace([] { isMade = true; });
    SetConsoleCtrlHandler(OnControlEvent, TRUE);
}

StopRequest::~StopRequest() {
    SetConsoleCtrlHandler(OnControlEvent, FALSE);
    lastWord = nullptr;
}

bool StopRequest::IsMade() const {
    return isMade;
}

}  // namespace tessary
