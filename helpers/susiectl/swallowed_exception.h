// Notices exceptions of a plug-in's that the system keeps to itself, on x86: a function that
// SetTimer was given may crash, and DispatchMessage answers 0.
//
// What the process can tell the system about this (UOI_TIMERPROC_EXCEPTION_SUPPRESSION,
// SetProcessUserModeExceptionPolicy) is left as it is: outside of calls, where nobody guards a
// window or timer that a plug-in has left behind, what is swallowed keeps the program alive.
#pragma once

#include <windows.h>

#include "helpers/susiectl/guard_context.h"

namespace tessary::susiectl {

// To be called before the first guarded call; whose later calls do nothing.
void LearnSystemsModules();

// For an exception that is about to be dispatched inside the guarded call, whose chain must be
// sound as far as its frame: has the call counted as crashed when a frame of user32.dll takes it.
// What happens in the system's own code is its own business.
void WatchSystemsFrames(GuardContext& guard, const EXCEPTION_RECORD& exception);

}  // namespace tessary::susiectl
