// Whoever waits for plug-ins.
#pragma once

#include <utility>

#include "plugin/host_state.h"
#include "plugin/waited_call.h"

namespace tessary {

// For its own life `watcher` is asked every moment while a plug-in in a process of its own is
// waited for, and each time when that tells how far it is. It may let messages run. kStops stays so
// until the call's end.
class CallWatch {
  public:
    explicit CallWatch(CallWatcher watcher)
        : outer_(std::exchange(Caller().watcher, std::move(watcher))) {}
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;
    ~CallWatch() { Caller().watcher = std::move(outer_); }

  private:
    CallWatcher outer_;
};

// What the innermost one says of a call that does well; without any, it is wanted.
inline bool IsCallWanted() {
    return !Caller().watcher || Caller().watcher({}) != CallWish::kStops;
}

}  // namespace tessary
