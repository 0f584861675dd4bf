#include "helpers/susiectl/safety_net.h"

#include <windows.h>

#include "helpers/susiectl/exception_chain.h"
#include "helpers/susiectl/exception_codes.h"
#include "helpers/susiectl/guard_machine.h"
#include "helpers/susiectl/process_end.h"

namespace tessary::susiectl {

#ifdef _WIN64

// Who handles an exception is written in tables there, which plug-ins do not overwrite.
void SpreadSafetyNet() {}
void RemoveSafetyNet() {}

#else

namespace {

void* registration = nullptr;

// With less stack than this the handlers on the chain cannot be trusted to run.
constexpr ULONG_PTR kRoomForHandlers = 24 * 1024;

bool IsStackExhausted(ULONG_PTR stackPointer) {
    MEMORY_BASIC_INFORMATION stack{};
    const auto* top = reinterpret_cast<const void*>(ThisThreadsStackLimits().low);
    if (!VirtualQuery(top, &stack, sizeof stack)) return false;
    const auto bottom = reinterpret_cast<ULONG_PTR>(stack.AllocationBase);
    return stackPointer >= bottom && stackPointer - bottom < kRoomForHandlers;
}

// Makes the thread go on as if it called TessaryResume(&guard) from just inside our frame.
void EndCall(GuardContext& guard, CONTEXT& context) {
    const auto stack = static_cast<ULONG_PTR*>(guard.frame) - 2;
    stack[1] = reinterpret_cast<ULONG_PTR>(&guard);
    context.Esp = reinterpret_cast<ULONG_PTR>(stack);
    context.Eip = reinterpret_cast<ULONG_PTR>(&TessaryResume);
    constexpr DWORD kTrapDirectionAndAlignment = 0x100 | 0x400 | 0x40000;
    context.EFlags &= ~kTrapDirectionAndAlignment;
}

// Where the handlers on the chain can do their work the net does nothing: the called code may well
// handle its exception itself.
bool CatchFalling(GuardContext& guard, CONTEXT& context) {
    const bool exhausted = IsStackExhausted(context.Esp);
    if (!exhausted && ExceptionChainReaches(guard.frame)) return false;
    guard.crashed = true;
    guard.stackExhausted |= exhausted;
    EndCall(guard, context);
    return true;
}

// Whether the thread is on its way back from a crash, outside of all guarded code.
bool IsBackFromCrash(const GuardContext* guard) {
    if (guard && guard->stage == GuardStage::kInside) return false;
    return IsRecovering() || (guard && guard->crashed);
}

// One of the processor's or system's errors. Others are thrown to be caught.
bool IsSystemError(DWORD code) {
    return code >> 28 == 0xC;
}

// Called for every exception of every thread, before the handlers on the chain.
LONG CALLBACK HandleFirst(EXCEPTION_POINTERS* pointers) {
    const DWORD lastError = GetLastError();  // the code that raised may ask for it
    const DWORD code = pointers->ExceptionRecord->ExceptionCode;
    GuardContext* guard = InnermostGuard();
    // Back from a crash there is nobody left who could take another one: what it means is that the
    // plug-in has ruined what we depend on.
    if (IsSystemError(code) && IsBackFromCrash(guard)) EndProcess();
    if (guard && guard->stage != GuardStage::kInside) guard = nullptr;
    // Whoever takes it, few put the stack in order again.
    if (guard && code == EXCEPTION_STACK_OVERFLOW) guard->stackExhausted = true;
    const bool caught = guard && guard->netSpread && !IsMessageToDebugger(code) &&
                        CatchFalling(*guard, *pointers->ContextRecord);
    SetLastError(lastError);
    return caught ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void SpreadSafetyNet() {
    registration = AddVectoredExceptionHandler(1, HandleFirst);
}

void RemoveSafetyNet() {
    if (registration) RemoveVectoredExceptionHandler(registration);
    registration = nullptr;
}

#endif

}  // namespace tessary::susiectl
