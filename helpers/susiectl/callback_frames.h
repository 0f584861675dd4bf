// The system's calls back into the program, on x86.
//
// When a function of the system (CreateWindow, DestroyWindow, TrackPopupMenu, …) runs a window
// procedure, it does so in the middle of a system call: the kernel keeps that call open, prepares a
// frame on the stack of its user and has KiUserCallbackDispatcher call on from there. Only
// NtCallbackReturn ends it, and always the innermost. Who jumps over such a frame leaves it open:
// the next callback that ends, the host's own as a rule, then ends this one in its place, and
// control comes back behind a CreateWindow whose caller is long gone. So a crash inside leaves by
// the way that is meant for it, level by level (callback_exit.h).
//
// KiUserCallbackDispatcher registers an exception handler of its own on the stack (Windows since
// Vista, native and under WoW64; Wine too). It is how such a frame is known. Left to itself this
// handler hides a crash, or ends the process, as the system's version will have it.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// A record of the thread's exception chain.
struct ExceptionRegistration {
    ExceptionRegistration* outer;
    const void* handler;
};

// Finds out what frames of callbacks look like, by having the system call back. To be called before
// each guarded call; does nothing once it is known. Where the system does not call back, as while
// there is no display, no frame is found.
void LearnCallbackFrames();

// Whether the record at this address is that of a callback. Anything may lie there, but readable.
bool IsCallbackFrame(const ExceptionRegistration* record);

// Whether this is the address at which what KiUserCallbackDispatcher has called returns to it.
bool IsIntoDispatcher(ULONG_PTR returnAddress);

// The first callback's record from `record` (or one of its outer ones) to `end`; null when there is
// none. The chain must be sound as far as `end`, or the thread's own end of it when that is null.
ExceptionRegistration* FirstCallbackFrame(ExceptionRegistration* record, const void* end);

// The first record of a callback that lies on the stack from `from` to `to` and whose chain leads
// to `end`; null when there is none. For threads that have lost the beginning of their chain. What
// is found may be left over from a callback that has ended.
ExceptionRegistration* SearchCallbackFrame(ULONG_PTR from, ULONG_PTR to, const void* end);

// The innermost record of this thread's chain.
ExceptionRegistration* InnermostRegistration();

// What KiUserCallbackDispatcher registers.
const void* SystemsCallbackHandler();

// Ends the innermost callback of the thread as a failed one: the system call that it is part of
// goes on. Comes back only when no callback is open.
void EndCallback();

}  // namespace tessary::susiectl
