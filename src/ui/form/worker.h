// Waiting for work beside the user-interface thread, for calls into the system that may block for
// long: a folder of a network that has gone away keeps its caller waiting for many seconds.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "app/base/worker_thread.h"

namespace tessary {

// Waits until one of the handles is signalled; false when the time is over before. Meanwhile the
// thread's windows are painted and messages that others send are answered: the one waited for may
// need that. What is posted, as all that the user does, stays in the queue.
bool WaitPainting(std::span<const HANDLE> handles, DWORD milliseconds);
inline bool WaitPainting(HANDLE handle, DWORD milliseconds) {
    return WaitPainting({&handle, 1}, milliseconds);
}

// Waits until one of the handles is signalled or the time is over, and handles the messages that
// come meanwhile. False when the program is about to end.
bool WaitHandlingMessages(std::span<const HANDLE> handles, DWORD milliseconds);

// The result of a call that may block. Messages are handled once it takes longer than a moment;
// from then on `waiting` is asked again and again, and when it answers false the call is given up:
// no result. No result either when the call throws.
template <typename Result>
std::optional<Result> CallInBackground(std::function<Result()> call,
                                       const std::function<bool()>& waiting) {
    constexpr DWORD kMomentMilliseconds = 150;
    constexpr DWORD kAskAgainMilliseconds = 50;
    const auto result = std::make_shared<std::optional<Result>>();
    const Worker worker([result, call = std::move(call)] { *result = call(); });
    if (!WaitPainting(worker.Handle(), kMomentMilliseconds)) {
        while (!worker.HasEnded()) {
            const HANDLE end[] = {worker.Handle()};
            if (!waiting() || !WaitHandlingMessages(end, kAskAgainMilliseconds)) {
                return std::nullopt;
            }
        }
    }
    return std::move(*result);
}

}  // namespace tessary
