#include "ui/form/worker.h"

#include "app/base/error.h"
#include "ui/form/message_loop.h"

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

bool WaitPainting(HANDLE handle, DWORD milliseconds) {
    const DWORD start = GetTickCount();
    const auto waited = [start] { return GetTickCount() - start; };
    for (;;) {
        // What was sent is answered within this call. Of the queue only painting is looked at; it
        // hands out a request to quit all the same, which is the outer loop's.
        MSG message{};
        while (waited() < milliseconds &&
               PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT,
                            PM_REMOVE | PM_QS_PAINT | PM_QS_SENDMESSAGE)) {
            if (message.message == WM_QUIT) {
                PostQuitMessage(static_cast<int>(message.wParam));
                break;
            }
            DispatchMessageW(&message);
        }
        const DWORD gone = waited();
        const DWORD left = gone < milliseconds ? milliseconds - gone : 0;
        const DWORD wake =
            MsgWaitForMultipleObjectsEx(1, &handle, left, QS_PAINT | QS_SENDMESSAGE, 0);
        if (wake == WAIT_OBJECT_0) return true;
        if (wake != WAIT_OBJECT_0 + 1 || left == 0) return false;
    }
}

bool WaitHandlingMessages(std::span<const HANDLE> handles, DWORD milliseconds) {
    const auto count = static_cast<DWORD>(handles.size());
    const DWORD start = GetTickCount();
    for (;;) {
        const DWORD waited = GetTickCount() - start;
        const DWORD left = waited < milliseconds ? milliseconds - waited : 0;
        const DWORD wake = MsgWaitForMultipleObjectsEx(count, handles.data(), left, QS_ALLINPUT,
                                                       MWMO_INPUTAVAILABLE);
        if (wake != WAIT_OBJECT_0 + count) return true;
        if (!DoEvents()) return false;
    }
}

}  // namespace tessary
