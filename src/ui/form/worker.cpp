#include "ui/form/worker.h"

#include "ui/form/message_loop.h"

namespace tessary {

bool WaitPainting(std::span<const HANDLE> handles, DWORD milliseconds) {
    const auto count = static_cast<DWORD>(handles.size());
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
            MsgWaitForMultipleObjectsEx(count, handles.data(), left, QS_PAINT | QS_SENDMESSAGE, 0);
        if (wake < WAIT_OBJECT_0 + count) return true;
        if (wake != WAIT_OBJECT_0 + count || left == 0) return false;
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
