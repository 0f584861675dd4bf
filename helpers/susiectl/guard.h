// Calls code that is not ours so that a crash in it is contained.
//
// An exception goes first to the handlers of the called code, which may take it as compilers let
// them; what nobody inside takes ends the call, after its clean-up code has run.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <optional>

#include "helpers/susiectl/guard_context.h"

namespace tessary::susiectl {

// Whether a call whose exception chain or stack is ruined may be ended as well. Not where the
// system's loader is between us and the plug-in: it would be left holding its locks. Where it is
// all the same the process ends, as all other threads would hang.
enum class Net { kSpread, kNone };

// Calls `function` as stdcall code with these machine words, at most kMaxArguments. Answers what it
// answered, or nothing when it crashed. Whatever it did to them, these are afterwards as before:
// the registers, the floating-point and direction state, the thread's exception chain, the current
// folder and the error mode. No system message box appears meanwhile. Calls may be nested.
// Throws std::bad_alloc.
std::optional<INT_PTR> GuardedCall(FARPROC function, std::initializer_list<ULONG_PTR> arguments,
                                   Net net = Net::kSpread, HostProgress progress = {});

// The same and no more: nothing but the processor's state is put back, the heaps are not looked
// at, and nothing is allocated but at the thread's first call.
std::optional<INT_PTR> BareCall(FARPROC function, std::initializer_list<ULONG_PTR> arguments);

// A function to call.
template <typename Function>
FARPROC AddressOf(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

// One argument of a call as a machine word.
template <typename T>
ULONG_PTR Word(T value) {
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<ULONG_PTR>(value);
    else
        return static_cast<ULONG_PTR>(value);
}

}  // namespace tessary::susiectl
