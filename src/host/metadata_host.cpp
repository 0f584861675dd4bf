#include "host/metadata_host.h"

#include <utility>

#include "app/base/error.h"
#include "host/host_connection.h"
#include "host/host_program.h"

namespace tessary {
namespace {

// Milliseconds: headers are read in one; a disk may have to wake up.
constexpr DWORD kLimit = 5000;
constexpr ULONGLONG kPause = 10'000;

}  // namespace

HostProcess* MetadataHost::Host() {
    if (host_ != nullptr && host_->IsAlive() && !host_->IsWorn()) return host_.get();
    host_.reset();
    const ULONGLONG now = GetTickCount64();
    if (now < retryAt_) return nullptr;
    if (WhyNoHostProgram(program_) == 0) {
        host_ = HostProcess::Start(program_, {}, {.isHidden = true});
    }
    retryAt_ = host_ == nullptr ? now + kPause : 0;
    return host_.get();
}

MetadataAnswer MetadataHost::Ask(const MetadataQuery& query) {
    const std::lock_guard lock(mutex_);
    return Trapped(MetadataAnswer(), [&]() -> MetadataAnswer {
        HostProcess* const host = Host();
        if (host == nullptr) return {};
        HostRequest request{.operation = HostOperation::kMetadata};
        request.file = query.path;
        request.saved = query.saved;
        if (query.path.empty()) {
            const std::optional<LentBytes::Lent> lent = lent_.Of(query.bytes);
            if (!lent) return {};
            request.bytes = host->Lend(*lent);
        }
        HostReply reply;
        const HostEnd end = host->Call(request, kLimit, {}, {}, reply);
        lent_.Forget();
        if (end != HostEnd::kAnswered) return {};
        return {std::move(reply.fields), std::move(reply.exif)};
    });
}

void MetadataHost::Rest() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (lock) host_.reset();
}

std::shared_ptr<MetadataHost> SharedMetadataHost() {
    static const auto host = std::make_shared<MetadataHost>(HostProgram());
    return host;
}

}  // namespace tessary
