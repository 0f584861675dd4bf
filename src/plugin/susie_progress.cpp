#include "plugin/susie_progress.h"

#include <utility>

#include "app/base/error.h"

namespace tessary {

thread_local ProgressRelay* ProgressRelay::current_ = nullptr;

ProgressRelay::ProgressRelay(const SusieProgress& progress)
    : progress_(progress), outer_(std::exchange(current_, this)) {}

ProgressRelay::~ProgressRelay() {
    current_ = outer_;
}

int __stdcall ProgressRelay::OnProgress(int done, int total, LONG_PTR) {
    ProgressRelay* const relay = current_;
    if (relay == nullptr || !relay->progress_) return 0;
    if (!Trapped(false, [&] { return relay->progress_(done, total); })) relay->stopped_ = true;
    return relay->stopped_ ? 1 : 0;
}

}  // namespace tessary
