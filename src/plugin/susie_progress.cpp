#include "plugin/susie_progress.h"

#include "app/base/error.h"

namespace tessary {

int __stdcall ProgressRelay::OnProgress(int done, int total, LONG_PTR userData) {
    auto* const relay = reinterpret_cast<ProgressRelay*>(userData);
    if (!relay->progress_) return 0;
    if (!Trapped(false, [&] { return relay->progress_(done, total); })) relay->stopped_ = true;
    return relay->stopped_ ? 1 : 0;
}

}  // namespace tessary
