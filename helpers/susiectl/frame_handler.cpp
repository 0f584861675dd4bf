// Takes the exceptions that nobody inside a guarded call took.
#include "helpers/susiectl/exception_codes.h"
#include "helpers/susiectl/guard_machine.h"
#ifndef _WIN64
#include "helpers/susiectl/callback_exit.h"
#endif

using tessary::susiectl::GuardContext;

namespace {

#ifdef _WIN64

// The tables that say what to clean up survive whatever a plug-in does, and so does their reader.
void UnwindAndResume(GuardContext& guard, EXCEPTION_RECORD* exception, void* dispatcher) {
    const auto* state = static_cast<DISPATCHER_CONTEXT*>(dispatcher);
    RtlUnwindEx(guard.frame, reinterpret_cast<void*>(&TessaryResume), exception, nullptr,
                state->ContextRecord, state->HistoryTable);
}

#else

void UnwindAndResume(GuardContext& guard, EXCEPTION_RECORD* exception, void*) {
    tessary::susiectl::RunCleanUp(guard, guard.frame, exception);
    TessaryResume(&guard);
}

#endif

}  // namespace

GuardContext* TessaryInnermostGuard() {
    return tessary::susiectl::InnermostGuard();
}

EXCEPTION_DISPOSITION TessaryFrameHandler(EXCEPTION_RECORD* exception, void* frame, CONTEXT*,
                                          void* dispatcher) {
    GuardContext* guard = tessary::susiectl::GuardOfFrame(frame);
    if (!guard) return ExceptionContinueSearch;
    if (IS_UNWINDING(exception->ExceptionFlags)) {
        // Somebody outside ends the call by a jump over it: our frame is about to go.
        if (!IS_TARGET_UNWIND(exception->ExceptionFlags)) PopGuard(*guard);
        return ExceptionContinueSearch;
    }
    if (tessary::susiectl::IsMessageToDebugger(exception->ExceptionCode))
        return ExceptionContinueExecution;
    guard->crashed = true;
    guard->stackExhausted |= exception->ExceptionCode == EXCEPTION_STACK_OVERFLOW;
    UnwindAndResume(*guard, exception, dispatcher);
    return ExceptionContinueSearch;  // not reached
}
