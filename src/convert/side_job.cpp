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
    if (pooled_ == nullptr) {
        Trapped(work_);
    } else {
        WaitForThreadpoolWorkCallbacks(pooled_, FALSE);
        CloseThreadpoolWork(pooled_);
    }
}

void CALLBACK SideJob::Run(PTP_CALLBACK_INSTANCE, void* job, PTP_WORK) {
    const NoSystemMessages quiet;
    Trapped(static_cast<SideJob*>(job)->work_);
}

}  // namespace tessary
