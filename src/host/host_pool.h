// The host processes that a program has.
#pragma once

#include <memory>
#include <string>

#include "host/host_process.h"
#include "plugin/plugin_ends.h"

namespace tessary {

// Is told of each end that a plug-in is to blame for, once. On the thread that asks for something.
using Blame = std::function<void(const PluginEnd& end)>;

// One host, started when it is first needed and replaced by the next call when it has ended or is
// worn. One thread's, whichever; pools share nothing.
class HostPool {
  public:
    // `program`: full path of what is started; the limits and the wait count for all calls.
    explicit HostPool(std::wstring program, HostLimits limits = {}, HostWait wait = {},
                      Blame blame = CountEnd)
        : program_(std::move(program)),
          limits_(limits),
          wait_(std::move(wait)),
          blame_(std::move(blame)) {}

    // Starts one if there is none. Null when that cannot be done; it is tried again after a while.
    HostProcess* Running();
    // Whether there is one, with what was loaded in it.
    bool IsRunning() const { return host_ != nullptr && host_->IsAlive() && !host_->IsWorn(); }

    const HostLimits& Limits() const { return limits_; }

    // Hands an end on to whoever is told of it; what he throws goes nowhere.
    void Tell(const PluginEnd& end) const;

  private:
    std::wstring program_;
    HostLimits limits_;
    HostWait wait_;
    Blame blame_;
    std::unique_ptr<HostProcess> host_;
    ULONGLONG failedAt_ = 0;  // when none could be started, in ticks; 0: that has not been
};

}  // namespace tessary
