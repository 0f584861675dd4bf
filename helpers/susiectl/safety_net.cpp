#include "helpers/susiectl/safety_net.h"

#include <windows.h>

#ifndef _WIN64
#include "helpers/susiectl/callback_exit.h"
#include "helpers/susiectl/callback_frames.h"
#include "helpers/susiectl/swallowed_exception.h"
#endif
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

bool IsInProgramFile(ULONG_PTR address) {
    MEMORY_BASIC_INFORMATION pages{};
    return VirtualQuery(reinterpret_cast<void*>(address), &pages, sizeof pages) &&
           pages.State == MEM_COMMIT && pages.Type == MEM_IMAGE;
}

// Of a thread whose chain is not sound. An overrun destroys what lies further up the stack: the
// records that the chain begins with, and the addresses at which code goes on.
StackState StateOfStack(const GuardContext& guard, const CONTEXT& context) {
    const void* const first = InnermostRegistration();
    const bool isOnStack = first >= reinterpret_cast<void*>(context.Esp) && first < guard.frame;
    return isOnStack || !IsInProgramFile(context.Eip) ? StackState::kOverwritten
                                                      : StackState::kChainLost;
}

// Makes the thread go on as if it called TessaryAbandon from just inside our frame: there is room.
void EndCall(GuardContext& guard, CONTEXT& context, StackState state) {
    constexpr ULONG_PTR kArguments = 64;  // bytes, more than they take
    const auto stack = reinterpret_cast<ULONG_PTR*>(
        ((reinterpret_cast<ULONG_PTR>(guard.frame) - kArguments) & ~15UL) - sizeof(ULONG_PTR));
    stack[1] = reinterpret_cast<ULONG_PTR>(&guard);
    stack[2] = context.Esp;
    stack[3] = static_cast<ULONG_PTR>(state);
    context.Esp = reinterpret_cast<ULONG_PTR>(stack);
    context.Eip = reinterpret_cast<ULONG_PTR>(&TessaryAbandon);
    constexpr DWORD kTrapDirectionAndAlignment = 0x100 | 0x400 | 0x40000;
    context.EFlags &= ~kTrapDirectionAndAlignment;
}

// Where the handlers on the chain can do their work the net does nothing: the called code may well
// handle its exception itself.
bool CatchFalling(GuardContext& guard, CONTEXT& context, bool isChainSound) {
    const bool exhausted = IsStackExhausted(context.Esp);
    const bool isAsked =
        isChainSound && ExceptionChainIsAsked(guard.frame, ThisThreadsLastHandler());
    if (!exhausted && isAsked) return false;
    guard.crashed = true;
    guard.stackExhausted |= exhausted;
    EndCall(guard, context, isChainSound ? StackState::kSound : StateOfStack(guard, context));
    return true;
}

// An exception in guarded code. True when it is not to be dispatched any more.
bool HandleInside(GuardContext& guard, const EXCEPTION_RECORD& exception, CONTEXT& context) {
    const DWORD code = exception.ExceptionCode;
    // Whoever takes it, few put the stack in order again.
    if (code == EXCEPTION_STACK_OVERFLOW) guard.stackExhausted = true;
    if (IsMessageToDebugger(code)) return false;
    guard.lastException = code;
    // Nobody could tell the loader, and the system would end the process itself, with a message.
    if (!guard.netSpread && !ExceptionChainBegins()) EndProcess();
    // Clean-up code that was under way further down is so no more: it has ended in a jump.
    if (context.Esp > reinterpret_cast<ULONG_PTR>(guard.unwindingFrom))
        guard.unwindingFrom = nullptr;
    const bool isChainSound = ExceptionChainReaches(guard.frame);
    if (guard.netSpread && CatchFalling(guard, context, isChainSound)) return true;
    if (isChainSound) {
        WatchInnermostCallback(guard);
        WatchSystemsFrames(guard, exception);
    }
    return false;
}

// Whether the thread is on its way back from a crash, outside of all guarded code.
bool IsBackFromCrash(const GuardContext* guard) {
    if (guard && guard->stage == GuardStage::kInside) return false;
    return IsRecovering() || (guard && guard->crashed);
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
    const bool caught =
        guard && HandleInside(*guard, *pointers->ExceptionRecord, *pointers->ContextRecord);
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
