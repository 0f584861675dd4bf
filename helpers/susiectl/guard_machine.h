// The machine-dependent steps of a guarded call, written in assembler (guard_x86.S, guard_x64.S),
// and what they call back.
#pragma once

#include <windows.h>

#include "helpers/susiectl/guard_context.h"

extern "C" {

// Calls guard->function with guard->arguments as stdcall code, behind an exception registration of
// ours, and puts the answer into guard->value. Comes back through TessaryResume too.
void __cdecl TessaryInvoke(tessary::susiectl::GuardContext* guard);

#ifdef _WIN64
// Not called: the place inside TessaryInvoke where execution goes on after an unwind to its frame.
void TessaryResume();
#else
// Goes on where TessaryInvoke(guard) was called, from whatever depth and state.
[[noreturn]] void __cdecl TessaryResume(tessary::susiectl::GuardContext* guard);

// Lets every frame inside `frame` run its clean-up code for `exception`.
void __cdecl TessaryUnwind(void* frame, EXCEPTION_RECORD* exception);

// AbandonCall, to which a thread is made to go on.
[[noreturn]] void __cdecl TessaryAbandon(tessary::susiectl::GuardContext* guard,
                                         ULONG_PTR stackPointer, ULONG_PTR state);

// What is put in the place of the system's handler on a callback's record: see callback_exit.h.
void TessaryCallbackHandler();

// What is put in the place of a handler of the system's: see swallowed_exception.h.
void TessaryWatchHandler();

// Where a system call returns whose callback has been left: to the level of the stack outside of
// it, and, second, to one that it should not have come to.
void TessaryCaughtReturn();
void TessaryStrayReturn();

// The same in C++, for the assembler. The first answers the handler to ask instead, or null for
// "go on as if nothing had happened"; no answer where it leaves the callback. The second and third
// are called before and after the system's own handler, which the second answers.
const void* __cdecl TessaryCallbackException(EXCEPTION_RECORD* exception, void* frame);
const void* __cdecl TessaryBeginWatched(const EXCEPTION_RECORD* exception, void* frame);
void __cdecl TessaryEndWatched(const EXCEPTION_RECORD* exception, void* frame);
[[noreturn]] void __cdecl TessaryPassOn(const void* stackPointer);
[[noreturn]] void __cdecl TessaryEndProcess();
#endif

// InnermostGuard, for the assembler.
tessary::susiectl::GuardContext* __cdecl TessaryInnermostGuard();

// The handler of TessaryInvoke's registration.
EXCEPTION_DISPOSITION __cdecl TessaryFrameHandler(EXCEPTION_RECORD* exception, void* frame,
                                                  CONTEXT* context, void* dispatcher);
}
