// The crashes and the changed processor and process states that a script can ask for.
#pragma once

#include <windows.h>

#include <string>

namespace tessary::test {

// The plug-in's own.
HMODULE ThisModule();

// A window of a class of that name and procedure, with code of the plug-in's.
HWND OpenWindowOfOurs(const wchar_t* name, WNDPROC procedure, DWORD style);

// Crashes. Comes back only from the kinds that are no crashes, and from unknown ones.
void Crash(const std::string& kind);

// Crashes, and takes the exception in an exception frame of its own.
void CrashAndHandle(const std::string& kind);

// The same with a handler that is code on a data page, as packed programs have it.
void CrashAndHandleInData(const std::string& kind);

// Crashes in an exception frame whose handler uses 16 KB of stack.
void CrashInHungryFrame(const std::string& kind);

// Crashes inside two frames whose clean-up code calls these.
void CrashWithCleanUp(const std::string& kind, void (*inner)(), void (*outer)());

// Crashes inside a frame whose clean-up code jumps out of it, and goes on.
void CrashAndJumpOut(const std::string& kind);

// Changes a state that the function's caller depends on.
void MakeDirty(const std::string& state);

// Returns `answer` to the caller of a stdcall function with every register that it should have kept
// changed. `frame` is the function's __builtin_dwarf_cfa(), `argumentCount` its number of
// arguments.
[[noreturn]] void ReturnWithoutRegisters(int answer, void* frame, int argumentCount);

}  // namespace tessary::test
