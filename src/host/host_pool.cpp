#include "host/host_pool.h"

#include "app/base/error.h"
#include "plugin/call_log.h"

namespace tessary {

HostProcess* HostPool::Running() {
    if (IsRunning()) return host_.get();
    const bool isWorn = host_ != nullptr && host_->IsWorn();
    host_.reset();
    // What it had to tell of damage was told with the crash.
    if (isWorn) Trapped([] { ForgetHostedCalls(); });
    host_ = HostProcess::Start(program_, wait_);
    return host_.get();
}

}  // namespace tessary
