// One guarded call: what is called, and what it takes to come back from it at any moment. Kept off
// the stack, which the called code may destroy.
#pragma once

#include <windows.h>

#include <array>
#include <cstddef>

#include "helpers/susiectl/floating_point_state.h"
#include "helpers/susiectl/guard_layout.h"
#include "helpers/susiectl/susie_interface.h"

namespace tessary::susiectl {

// GetPicture, the longest of the plug-in functions, takes seven.
constexpr size_t kMaxArguments = 8;

// What the caller wants to hear while the called function works.
struct HostProgress {
    susie::ProgressCallback callback = nullptr;
    LONG_PTR userData = 0;
};

// Where a guarded call is.
enum class GuardStage { kBefore, kInside, kAfter };

#ifndef _WIN64
struct ExceptionRegistration;

// A record of the system's on whose behaviour a call has an eye (swallowed_exception.h).
struct WatchedRecord {
    const ExceptionRegistration* record = nullptr;
    const void* handler = nullptr;  // its own
    bool wasCrashed = false;        // the call, before the handler was asked
};
#endif

struct GuardContext {
    FARPROC function = nullptr;
    std::array<ULONG_PTR, kMaxArguments> arguments{};
    INT_PTR value = 0;      // what the function answered
    void* frame = nullptr;  // our exception registration: the frame that handlers are told
#ifndef _WIN64
    // The caller's registers, because a plug-in may return without having kept them.
    void* outerFrame = nullptr;
    void* stack = nullptr;
    void* returnAddress = nullptr;
    ULONG_PTR ebp = 0, ebx = 0, esi = 0, edi = 0;
    size_t argumentCount = 0;  // stdcall: no more words than these may lie on the stack
    // How deep in the stack the called code's clean-up was begun; null when none is under way.
    const void* unwindingFrom = nullptr;
    WatchedRecord watched;
#endif
    bool netSpread = true;  // the safety net may end the call, see Net
    GuardStage stage = GuardStage::kBefore;
    bool crashed = false;
    DWORD lastException = 0;  // the code of what was raised in there, handled or not; 0: nothing
    bool stackExhausted = false;  // its guard page has been used up
    HostProgress progress;
    FloatingPointState hostState;  // as it was before the call
};

static_assert(offsetof(GuardContext, function) == GUARD_FUNCTION);
static_assert(offsetof(GuardContext, arguments) == GUARD_ARGUMENTS);
static_assert(offsetof(GuardContext, value) == GUARD_VALUE);
static_assert(offsetof(GuardContext, frame) == GUARD_FRAME);
#ifndef _WIN64
static_assert(offsetof(GuardContext, outerFrame) == GUARD_OUTER_FRAME);
static_assert(offsetof(GuardContext, stack) == GUARD_STACK);
static_assert(offsetof(GuardContext, returnAddress) == GUARD_RETURN_ADDRESS);
static_assert(offsetof(GuardContext, ebp) == GUARD_EBP);
static_assert(offsetof(GuardContext, ebx) == GUARD_EBX);
static_assert(offsetof(GuardContext, esi) == GUARD_ESI);
static_assert(offsetof(GuardContext, edi) == GUARD_EDI);
static_assert(offsetof(GuardContext, argumentCount) == GUARD_ARGUMENT_COUNT);
#endif

// The running guarded calls of this thread, innermost last. A plug-in that reports progress calls
// the host, and the host may call the next plug-in from there.

// Once for the library, before and after all calls. False when the system has no slot left.
bool OpenGuardStacks();
void CloseGuardStacks();

// A new innermost call; throws std::bad_alloc, also where they are nested too deep.
GuardContext& PushGuard();

// Ends `guard` and every call that was begun inside it and has not ended by itself.
void PopGuard(const GuardContext& guard);

// Whether no other call was under way in this thread when `guard` was begun.
bool IsOutermost(const GuardContext& guard);

// Null when no guarded call runs in this thread.
GuardContext* InnermostGuard();

#ifndef _WIN64
// A word of the stack as it was before it was changed (callback_exit.h).
struct ChangedWord {
    ULONG_PTR* place;
    ULONG_PTR before;
};
constexpr size_t kMaxChangedWords = 64;

// Those of this thread; only while a guarded call runs in it.
struct ChangedWords {
    std::array<ChangedWord, kMaxChangedWords> words;
    size_t count = 0;
};
ChangedWords& ThisThreadsChangedWords();

// LastExceptionHandler as it was before the thread's first guarded call.
const void* ThisThreadsLastHandler();
#endif

// Whether this thread is on its way back to the host from a call that has crashed, as it was told
// last.
bool IsRecovering();
void SetRecovering(bool isRecovering);

// For every entry that makes guarded calls: at its end the host is reached.
struct WayBack {
    WayBack() = default;
    ~WayBack() { SetRecovering(false); }
    WayBack(const WayBack&) = delete;
    WayBack& operator=(const WayBack&) = delete;
};

// The running call whose registration is `frame`; null when there is none.
GuardContext* GuardOfFrame(const void* frame);

}  // namespace tessary::susiectl
