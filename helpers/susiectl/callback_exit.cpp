#include "helpers/susiectl/callback_exit.h"

#include <span>

#include "helpers/susiectl/callback_frames.h"
#include "helpers/susiectl/exception_chain.h"
#include "helpers/susiectl/exception_codes.h"
#include "helpers/susiectl/guard_machine.h"
#include "helpers/susiectl/leftover_windows.h"
#include "helpers/susiectl/module_at.h"
#include "helpers/susiectl/process_end.h"
#include "helpers/susiectl/return_address.h"

namespace tessary::susiectl {
namespace {

// "An unhandled exception was encountered during a user callback."
constexpr DWORD kCallbackException = 0xC000041D;

// Where the called code's part of the stack begins.
ULONG_PTR TopOfCall(const GuardContext& guard) {
    constexpr ULONG_PTR kCushion = GUARD_CUSHION_PAGES * 4096;
    return reinterpret_cast<ULONG_PTR>(guard.frame) - kCushion;
}

ULONG_PTR Address(const void* pointer) {
    return reinterpret_cast<ULONG_PTR>(pointer);
}

// Calls `change` with the place of each return address from `from` to `to`, until it answers false.
template <typename Change>
void ForReturnAddresses(ULONG_PTR from, ULONG_PTR to, const Change& change) {
    ReturnAddressTest isReturnAddress;
    for (auto* word = reinterpret_cast<ULONG_PTR*>(from & ~3UL); Address(word + 1) <= to; ++word)
        if (isReturnAddress(*word) && !change(word)) return;
}

using Trampoline = void();

// Takes note of what was there; false when there is no room for more notes.
bool Replace(ULONG_PTR* word, Trampoline* by) {
    ChangedWords& changed = ThisThreadsChangedWords();
    if (changed.count == changed.words.size()) return false;
    changed.words[changed.count++] = {word, *word};
    *word = Address(reinterpret_cast<void*>(by));
    return true;
}

// Replaces the first return addresses: the next that is used is one of them. Callbacks further out
// remain known by theirs.
void CatchReturns(ULONG_PTR from, ULONG_PTR to) {
    ForReturnAddresses(from, to, [](ULONG_PTR* word) {
        return IsIntoDispatcher(*word) || Replace(word, TessaryCaughtReturn);
    });
}

// Replaces all of them, for good: nobody knows where the next one is.
void CatchAllReturns(ULONG_PTR from, ULONG_PTR to) {
    ForReturnAddresses(from, to, [](ULONG_PTR* word) {
        if (!IsIntoDispatcher(*word))
            *word = Address(reinterpret_cast<void*>(&TessaryCaughtReturn));
        return true;
    });
}

// The same for the host's part of the stack outside its own callback's `record`: whoever comes back
// there has ended the wrong one.
void CatchStrayReturns(const ExceptionRegistration* record) {
    int left = 16;
    ForReturnAddresses(Address(record + 1), ThisThreadsStackLimits().high, [&](ULONG_PTR* word) {
        return Replace(word, TessaryStrayReturn) && --left > 0;
    });
}

// Whoever takes the exception returns as he would have. What is below `from` is nobody's any more;
// what is not below `to` stays as it is.
void PutReturnsBack(ULONG_PTR from, ULONG_PTR to) {
    ChangedWords& changed = ThisThreadsChangedWords();
    size_t kept = 0;
    for (const ChangedWord& each : std::span(changed.words).first(changed.count)) {
        const ULONG_PTR place = Address(each.place);
        if (place >= to)
            changed.words[kept++] = each;
        else if (place >= from)
            *each.place = each.before;
    }
    changed.count = kept;
}

// Leaves the callback of `record`, which is known to be open and the innermost.
[[noreturn]] void LeaveCallback(GuardContext& guard, ExceptionRegistration* record) {
    // Those of a callback further out: this one is part of how the system ends its call.
    PutReturnsBack(Address(record), TopOfCall(guard));
    const auto* const next = FirstCallbackFrame(record->outer, guard.frame);
    CatchReturns(Address(record + 1), next ? Address(next) : TopOfCall(guard));
    guard.unwindingFrom = nullptr;
    // As the dispatcher leaves it when a callback ends by itself.
    asm volatile("movl %0, %%fs:0" : : "r"(record->outer) : "memory");
    EndCallback();
    EndProcess();
}

// Whether the called code may be in a callback that has left no trace on the stack, for it was
// overwritten there.
bool MayBeInCallback(GuardContext& guard) {
    guard.stage = GuardStage::kAfter;  // nobody is there to handle it should this crash
    return HasWindows(ModuleAt(reinterpret_cast<const void*>(guard.function)));
}

// Leaves the innermost callback inside the call, if there is one. Where the host has none open
// outside of it the system itself can be asked. Else what is found on the stack is believed, but
// not trusted.
[[noreturn]] void LeaveUnknownCallback(GuardContext& guard, ULONG_PTR stackPointer,
                                       StackState state) {
    asm volatile("movl %0, %%fs:0" : : "r"(guard.frame) : "memory");
    const ULONG_PTR top = TopOfCall(guard);
    const auto* const hosts =
        FirstCallbackFrame(static_cast<ExceptionRegistration*>(guard.outerFrame), nullptr);
    const auto* const found = SearchCallbackFrame(stackPointer, top, guard.frame);
    if (hosts && !found) {
        if (state == StackState::kOverwritten && MayBeInCallback(guard)) EndProcess();
        TessaryResume(&guard);
    }
    PutReturnsBack(stackPointer, top);
    if (hosts) CatchStrayReturns(hosts);
    if (found)
        CatchReturns(Address(found + 1), top);
    else
        CatchAllReturns(stackPointer, top);
    EndCallback();
    if (hosts) EndProcess();
    TessaryResume(&guard);
}

}  // namespace

void RunCleanUp(GuardContext& guard, void* frame, EXCEPTION_RECORD* exception) {
    // The loader's is tried all the same: else it stays held, and the process must end.
    const bool isRoom = exception->ExceptionCode != EXCEPTION_STACK_OVERFLOW || !guard.netSpread;
    if (guard.unwindingFrom || !isRoom) return;
    guard.unwindingFrom = __builtin_frame_address(0);
    TessaryUnwind(frame, exception);
}

void WatchInnermostCallback(const GuardContext& guard) {
    auto* const record = FirstCallbackFrame(InnermostRegistration(), guard.frame);
    if (record) record->handler = reinterpret_cast<void*>(&TessaryCallbackHandler);
}

void AbandonCall(GuardContext& guard, ULONG_PTR stackPointer, StackState state) {
    guard.unwindingFrom = nullptr;
    if (state == StackState::kSound) {
        auto* const record = FirstCallbackFrame(InnermostRegistration(), guard.frame);
        if (record) LeaveCallback(guard, record);
        TessaryResume(&guard);
    }
    const ULONG_PTR low = ThisThreadsStackLimits().low;
    const bool isOnStack = stackPointer >= low && stackPointer <= TopOfCall(guard);
    LeaveUnknownCallback(guard, isOnStack ? stackPointer : low, state);
}

}  // namespace tessary::susiectl

using namespace tessary::susiectl;

void TessaryAbandon(GuardContext* guard, ULONG_PTR stackPointer, ULONG_PTR state) {
    AbandonCall(*guard, stackPointer, static_cast<StackState>(state));
}

const void* TessaryCallbackException(EXCEPTION_RECORD* exception, void* frame) {
    GuardContext* guard = InnermostGuard();
    const bool isOurs = guard && guard->stage == GuardStage::kInside && frame < guard->frame;
    if (!isOurs || IS_UNWINDING(exception->ExceptionFlags)) return SystemsCallbackHandler();
    if (IsMessageToDebugger(exception->ExceptionCode)) return nullptr;
    // Whatever becomes of it outside: where nothing is between, the system keeps it from the rest
    // of the plug-in as well. The loader alone takes it for itself.
    if (guard->netSpread) guard->crashed = true;
    guard->stackExhausted |= exception->ExceptionCode == EXCEPTION_STACK_OVERFLOW;
    RunCleanUp(*guard, frame, exception);
    LeaveCallback(*guard, static_cast<ExceptionRegistration*>(frame));
}

void TessaryPassOn(const void* stackPointer) {
    const GuardContext* guard = InnermostGuard();
    if (!guard || guard->stage != GuardStage::kInside) EndProcess();
    PutReturnsBack(Address(stackPointer), ~ULONG_PTR{0});
    RaiseException(kCallbackException, EXCEPTION_NONCONTINUABLE, 0, nullptr);
    EndProcess();
}

void TessaryEndProcess() {
    EndProcess();
}
