#include "convert/side_job.h"

#include <utility>

#include "app/base/error.h"
#include "convert/no_system_messages.h"

namespace tessary {

SideJob::SideJob(std::function<void()> work)
    : work_(std::move(work)), pooled_(CreateThreadpoolWork(Run, this, nullptr)) {
    if (pooled_ != nullptr) SubmitThreadpoolWork(pooled_);
}

SideJob::~SideJob() {
    if (pooled_ != nullptr) {
        WaitForThreadpoolWorkCallbacks(pooled_, TRUE);
        CloseThreadpoolWork(pooled_);
    }
    if (!hasBegun_) Trapped(work_);
}

void CALLBACK SideJob::Run(PTP_CALLBACK_INSTANCE, void* job, PTP_WORK) {
    auto& self = *static_cast<SideJob*>(job);
    self.hasBegun_ = true;
    const NoSystemMessages quiet;
    Trapped(self.work_);
}

}  // namespace tessary
