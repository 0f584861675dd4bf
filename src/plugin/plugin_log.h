// What the settings store remembers about plug-ins: the call under way, their failures, and which
// version of a file these belong to. Plug-ins are named by their file name without folder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessary {

// A call into a plug-in.
struct PluginCall {
    std::wstring function;
    std::wstring plugin;
    std::wstring file;  // the file bound at the time of the call; empty when none was
};

// Writes the section `SPI_CALLLOG` before a call; further copies of the program that run at the
// same time write `SPI_CALLLOG_2` and so on. All routines here throw RaisedError when the store
// cannot be accessed.
void WriteCallLog(const PluginCall& call);

// Removes the section after the call.
void ClearCallLog();

// The call that the last run did not come back from, if any: its failure is counted, and the call
// log is clean afterwards. Of several such runs each is counted. The logs of copies that still live
// are left alone.
std::optional<PluginCall> RecoverInterruptedCall();

// Failures of one function of a plug-in, or of all of them (key `Total`) for an empty name. What
// is no number counts as 0.
int32_t ReadErrorCount(std::wstring_view plugin, std::wstring_view function);

// Adds one to a function's failures and to `Total`.
void IncrementErrorCount(std::wstring_view plugin, std::wstring_view function);

// The functions that have failed, by name, and how often each has.
struct FunctionErrors {
    std::wstring function;
    int32_t count = 0;
};
std::vector<FunctionErrors> ReadFunctionErrors(std::wstring_view plugin);

// Forgets all failures of a plug-in, those of its loading too.
void ForgetFailures(std::wstring_view plugin);

// Whether the program ended twice in a row while it loaded this plug-in. To load it again would
// keep the program from ever starting.
bool KeepsEndingTheProgram(std::wstring_view plugin);

// Grants such a plug-in one more load, which the next run is to make: what ended the program may
// have been something else. If that one ends it too, KeepsEndingTheProgram is true again.
void GrantAnotherLoad(std::wstring_view plugin);

// To be called after the plug-in was loaded and the program still lives.
void NoteLoaded(std::wstring_view plugin);

// Compares the plug-in file's date and time with the one last seen. For a new or replaced file
// forgets all failures, remembers the new date and answers true. A file that cannot be found
// changes nothing.
bool CheckFileDate(const std::wstring& pluginPath);

}  // namespace tessary
