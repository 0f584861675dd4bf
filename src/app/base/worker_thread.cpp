#include "app/base/worker_thread.h"

#include <memory>
#include <utility>

#include "app/base/error.h"

namespace tessary {
namespace {

using Work = std::function<void()>;

DWORD WINAPI Run(void* parameter) {
    const std::unique_ptr<Work> work(static_cast<Work*>(parameter));
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, nullptr);
    Trapped([&] { (*work)(); });
    return 0;
}

}  // namespace

Worker::Worker(std::function<void()> work) {
    auto owned = std::make_unique<Work>(std::move(work));
    thread_.Reset(CreateThread(nullptr, 0, Run, owned.get(), 0, nullptr));
    if (!thread_) throw RaisedError(kErrorOutOfMemory, L"スレッドを作成できません。");
    static_cast<void>(owned.release());  // the thread's from here on
}

Worker::~Worker() {
    CancelCall();
}

void Worker::CancelCall() const {
    if (!HasEnded()) CancelSynchronousIo(Handle());
}

}  // namespace tessary
