// The crashes and the changed processor and process states that a script can ask for.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/plugins/script.h"

namespace tessary::test {

// The plug-in's own.
HMODULE ThisModule();

// A window of a class of that name and procedure, with code of the plug-in's.
HWND OpenWindowOfOurs(const wchar_t* name, WNDPROC procedure, DWORD style);

// Crashes. Comes back only from the kinds that are no crashes, and from unknown ones.
void Crash(const std::string& kind);

// "<where>/<kind>": crashes as Crash(kind) does, in one of these places: `create` (WM_CREATE),
// `create-in-create` (that of a window which is made in another's), `init` (WM_INITDIALOG),
// `command` (the WM_COMMAND of a dialog's button), `posted` (a message that was posted), `timer` (a
// WM_TIMER), `timer-procedure` (a function that SetTimer was given), `destroy` (WM_DESTROY).
// Anything else does nothing. Counts as "window" when the crash is reached, and as
// "window-came-back" when the function of the system does come back to its caller.
void CrashInWindow(const std::string& placeAndKind);

// Does what "<verb>:<kind>:<name>" in the script asks for before the function `name` does its work:
// crashes, in a frame of the plug-in's own perhaps, and changes of state.
void Misbehave(const Script& script, const std::string& name);

// Changes a state that the function's caller depends on.
void MakeDirty(const std::string& state);

// The states of those that outlast the call, in the process or its thread.
void ChangeSystem(const std::string& state);

// Whether priorities, processors and languages are those that the process began with.
bool IsPlainProcess();

// The blocks of all pictures so far.
std::vector<HLOCAL>& HandedOut();

// Returns `answer` to the caller of a stdcall function with every register that it should have kept
// changed. `frame` is the function's __builtin_dwarf_cfa(), `argumentCount` its number of
// arguments.
[[noreturn]] void ReturnWithoutRegisters(int answer, void* frame, int argumentCount);

}  // namespace tessary::test
