#include "host/host_pool.h"

#include "app/base/error.h"
#include "plugin/call_log.h"

namespace tessary {
namespace {

constexpr ULONGLONG kPause = 30'000;  // milliseconds between two starts that fail

}  // namespace

HostProcess* HostPool::Running() {
    if (IsRunning()) return host_.get();
    if (failedAt_ != 0 && GetTickCount64() - failedAt_ < kPause) return nullptr;
    if (host_ != nullptr) {
        const bool isWorn = host_->IsWorn();
        host_.reset();
        // Of a worn one the crash was told. Another one has ended while nobody called it.
        Trapped([&] { isWorn ? ForgetHostedCalls() : static_cast<void>(RecoverHostedCalls()); });
    }
    host_ = HostProcess::Start(program_, wait_);
    failedAt_ = host_ == nullptr ? GetTickCount64() : 0;
    return host_.get();
}

}  // namespace tessary
