// Whoever waits for plug-ins.
#pragma once

#include <functional>
#include <utility>

#include "plugin/host_state.h"

namespace tessary {

// For its own life calls of plug-ins in processes of their own are given up when nobody wants them
// any more. `isWanted` is asked every moment while one is waited for, and may let messages run;
// false stays so.
class CallWatch {
  public:
    explicit CallWatch(std::function<bool()> isWanted)
        : outer_(std::exchange(Host().isWanted, std::move(isWanted))) {}
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;
    ~CallWatch() { Host().isWanted = std::move(outer_); }

  private:
    std::function<bool()> outer_;
};

// What the innermost one says; without any, it is.
inline bool IsCallWanted() {
    return !Host().isWanted || Host().isWanted();
}

}  // namespace tessary
