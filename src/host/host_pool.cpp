#include "host/host_pool.h"

#include "app/base/error.h"

namespace tessary {
namespace {

constexpr ULONGLONG kPause = 30'000;  // milliseconds between two starts that fail

}  // namespace

HostProcess* HostPool::Running() {
    if (IsRunning()) return host_.get();
    if (failedAt_ != 0 && GetTickCount64() - failedAt_ < kPause) return nullptr;
    if (host_ != nullptr) {
        // Of a worn one the crash was told. Another one has ended while nothing was asked of it:
        // a thread may have.
        const std::optional<PluginEnd> end =
            host_->IsWorn() ? std::nullopt : host_->TakeBlame(HostEnd::kDied, {});
        host_.reset();
        if (end) Tell(*end);
    }
    host_ = HostProcess::Start(program_, wait_);
    failedAt_ = host_ == nullptr ? GetTickCount64() : 0;
    return host_.get();
}

void HostPool::Tell(const PluginEnd& end) const {
    Trapped([&] { blame_(end); });
}

}  // namespace tessary
