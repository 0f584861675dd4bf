// The time of a call into a plug-in.
#pragma once

#include <utility>

#include "app/base/quit.h"
#include "plugin/host_state.h"

namespace tessary {

// Marks it (PluginCallUnderWay). It restores what it found rather than counting: scopes inside a
// call that crashes never end.
class CallScope {
  public:
    CallScope() : outer_(std::exchange(Caller().isCallUnderWay, true)) {}
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;
    ~CallScope() {
        Caller().isCallUnderWay = outer_;
        // Plug-ins post a request to quit when a window of theirs closes. It is not theirs to make.
        if (!outer_) DropForeignQuit();
    }

  private:
    bool outer_;
};

}  // namespace tessary
