// Where a process that calls plug-ins for another one leaves what it would else write to the
// settings store.
#pragma once

#include <string>

#include "plugin/call_log.h"

namespace tessary {

class CallNotes {
  public:
    CallNotes() = default;
    CallNotes(const CallNotes&) = delete;
    CallNotes& operator=(const CallNotes&) = delete;
    virtual ~CallNotes() = default;

    // A call begins, is over, has crashed and was caught (its function by the key of the error
    // log).
    virtual void OnCall(const PluginCall& call) = 0;
    virtual void OnReturn() = 0;
    virtual void OnFailure(const PluginCall& call) = 0;

    // From another thread, in which a crash ends the process, in whose memory nothing is to be
    // relied on: in the code of that plug-in, or where it is not known whose (empty).
    virtual void OnThreadCrash(const std::wstring& plugin) noexcept = 0;
};

// From now on this process notes its calls there, and nothing in the settings store. `notes` must
// outlive all calls.
void NoteCallsIn(CallNotes& notes);

}  // namespace tessary
