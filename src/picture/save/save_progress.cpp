#include "picture/save/save_progress.h"

#include <utility>

#include "app/base/error.h"
#include "helpers/saving/progress_callback.h"

namespace tessary {
namespace {

thread_local const dib::Progress* told = nullptr;

int __stdcall OnProgress(int done, int total, LONG_PTR) {
    if (told == nullptr || total <= 0) return 0;
    const int percent = MulDiv(done, 100, total);
    return Trapped(false, [&] { return (*told)(percent); }) ? 0 : 1;
}

}  // namespace

SaveProgress::SaveProgress(dib::Progress tell) : tell_(std::move(tell)) {
    told = &tell_;
}

SaveProgress::~SaveProgress() {
    told = nullptr;
}

LONG_PTR SaveProgress::PassThrough() {
    const saving::ProgressCallback callback = &OnProgress;
    return reinterpret_cast<LONG_PTR>(callback);
}

}  // namespace tessary
