// The host processes that a program has.
#pragma once

#include <memory>
#include <string>

#include "host/host_process.h"

namespace tessary {

// One host, started when it is first needed and replaced by the next call when it has ended or is
// worn.
class HostPool {
  public:
    // `program`: full path of what is started; the limits and the wait count for all calls.
    explicit HostPool(std::wstring program, HostLimits limits = {}, HostWait wait = {})
        : program_(std::move(program)), limits_(limits), wait_(std::move(wait)) {}

    // Starts one if there is none. Null when that cannot be done; it is tried again after a while.
    HostProcess* Running();
    // Whether there is one, with what was loaded in it.
    bool IsRunning() const { return host_ != nullptr && host_->IsAlive() && !host_->IsWorn(); }

    const HostLimits& Limits() const { return limits_; }

  private:
    std::wstring program_;
    HostLimits limits_;
    HostWait wait_;
    std::unique_ptr<HostProcess> host_;
    ULONGLONG failedAt_ = 0;  // when none could be started, in ticks; 0: that has not been
};

}  // namespace tessary
