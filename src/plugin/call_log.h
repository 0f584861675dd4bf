// The call into a plug-in that is under way, as the settings store has it: when the process ends in
// the middle of one, the next run learns whose it was.
#pragma once

#include <string>
#include <vector>

namespace tessary {

// A call into a plug-in.
struct PluginCall {
    std::wstring function;
    std::wstring plugin;      // full path; what earlier versions left has the file name alone
    std::wstring file;        // the file bound at the time of the call; empty when none was
    bool hasDamaged = false;  // it came back, but the memory was damaged then

    // Whether the plug-in was being loaded, or asked what it is.
    bool WhileLoading() const;
};

// Writes the section `SPI_CALLLOG` before a call; further copies of the program that run at the
// same time write `SPI_CALLLOG_2` and so on. In a process that serves another one all of this goes
// elsewhere (call_notes.h). Where the store does not take it the call is made all
// the same, and CallsGoUnlogged tells.
void WriteCallLog(const PluginCall& call);

// Removes the section after the call.
void ClearCallLog();

// Leaves the section after a call that has damaged memory: what ends the process later is held
// against the plug-in, until ClearCallLog.
void KeepCallLog();

// For its own life GetPluginInfo of a plug-in is being called, once or several times: what a
// section of its own (`SPI_INFOLOG`) says, for the call log does not know this function.
class InfoCalls {
  public:
    explicit InfoCalls(const std::wstring& plugin);
    InfoCalls(const InfoCalls&) = delete;
    InfoCalls& operator=(const InfoCalls&) = delete;
    ~InfoCalls();
};

// Counts a call that has crashed and was caught; its function by the key of the error log.
void CountFailure(const PluginCall& call);

// The plug-in that is being called, as a full path; empty: none. From any thread.
std::wstring PluginUnderCall();

// Notes that a call has damaged the program's memory. One while a plug-in was being loaded counts
// as an end of the run there: RecoverInterruptedCalls of the next run finds it.
void NoteDamagingCall(const PluginCall& call);

// From another thread than the one that calls plug-ins, when a crash there ends the process: holds
// it against `plugin` instead of the one that is being called. Empty: against nobody, when
// a plug-in is being freed, which may take away what others' threads need; else the log stays.
void HoldThreadCrashAgainst(const std::wstring& plugin);

// Whether the last call could not be written down.
bool CallsGoUnlogged();

// To be called when something else than a plug-in is about to end the process in the middle of a
// call, as the end of the session does: the call is not held against its plug-in, nor is any later
// one. From any thread.
void ExcuseLastCall();
// Whether that is so.
bool CallsAreExcused();

// The calls that earlier runs did not come back from: their failures are counted, and the logs are
// clean afterwards. The logs of copies that still live are left alone. Runs that have ended in the
// same call of one plug-in count as one, as the power fails for all.
std::vector<PluginCall> RecoverInterruptedCalls();

// The same calls, left for the next start to count.
std::vector<PluginCall> FindInterruptedCalls();

}  // namespace tessary
