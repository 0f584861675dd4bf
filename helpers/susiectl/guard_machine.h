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
#endif

// InnermostGuard, for the assembler.
tessary::susiectl::GuardContext* __cdecl TessaryInnermostGuard();

// The handler of TessaryInvoke's registration.
EXCEPTION_DISPOSITION __cdecl TessaryFrameHandler(EXCEPTION_RECORD* exception, void* frame,
                                                  CONTEXT* context, void* dispatcher);
}
