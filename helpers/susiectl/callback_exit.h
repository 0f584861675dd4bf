// Leaves callbacks of the system in which a plug-in has crashed (callback_frames.h), on x86.
//
// An exception that nobody inside the callback takes ends it as the system means callbacks to end,
// after the clean-up code of what is inside: with NtCallbackReturn, and a failure. The kernel then
// finishes the call that it was part of and returns to its caller: code of the system's, and soon
// the plug-in's. There the exception is raised anew, so that it makes its way out from level to
// level. To come to know of the return, the first return addresses on the level's part of the stack
// are replaced by that of TessaryCaughtReturn before the callback ends: the one that is used gives
// us control, with nothing of the system's open inside. Then they are put back.
#pragma once

#include <windows.h>

#include "helpers/susiectl/guard_context.h"

namespace tessary::susiectl {

// Lets the frames inside `frame` run their clean-up code. None runs after one that crashed itself,
// nor, but for the loader's, where there is no room for it.
void RunCleanUp(GuardContext& guard, void* frame, EXCEPTION_RECORD* exception);

// Sees to it that an exception that is about to be dispatched does not leave the innermost callback
// inside the guarded call by a way of the system's, if there is one. The thread's exception chain
// must be sound as far as the guard's frame.
void WatchInnermostCallback(const GuardContext& guard);

// What is known of a thread's stack: kSound as far as its exception chain goes, which is sound;
// kChainLost: nothing leads to the beginning of its chain; kOverwritten: the records on it may be
// gone as well.
enum class StackState : ULONG_PTR { kSound, kChainLost, kOverwritten };

// Ends the call, whose stack is used up or no longer sound, and was last used down to
// `stackPointer`, without any clean-up, level by level where callbacks are open inside. Ends the
// process where nothing tells which they are.
[[noreturn]] void AbandonCall(GuardContext& guard, ULONG_PTR stackPointer, StackState state);

}  // namespace tessary::susiectl
