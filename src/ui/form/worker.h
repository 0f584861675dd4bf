// Work beside the user-interface thread, for calls into the system that may block for long: a
// folder of a network that has gone away keeps its caller waiting for many seconds.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "app/base/handles.h"

namespace tessary {

namespace handle_traits {
struct Event : NullIsNone<HANDLE> {
    static void Close(HANDLE event) { CloseHandle(event); }
};
struct Thread : NullIsNone<HANDLE> {
    static void Close(HANDLE thread) { CloseHandle(thread); }
};
}  // namespace handle_traits
using UniqueEvent = UniqueHandle<handle_traits::Event>;
using UniqueThread = UniqueHandle<handle_traits::Thread>;

// One piece of work on a thread of its own, where the system shows no error boxes about drives and
// what the work throws ends. The work must own all it touches or share its ownership: one that is
// stuck in the system when its Worker ends is left behind.
class Worker {
  public:
    // Begins at once. Raises kErrorOutOfMemory when the system has no thread to give.
    explicit Worker(std::function<void()> work);
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    // Breaks the work's system call off.
    ~Worker();

    // Signalled when the work has ended; stays this object's.
    HANDLE Handle() const { return thread_.Get(); }
    bool HasEnded() const { return WaitForSingleObject(Handle(), 0) == WAIT_OBJECT_0; }

    // Breaks off the file operation that the work waits for, if there is one: it then fails.
    void CancelCall() const;

  private:
    UniqueThread thread_;
};

// Waits until the handle is signalled; false when the time is over before. Meanwhile the thread's
// windows are painted and messages that others send are answered: the one waited for may need that.
// What is posted, as all that the user does, stays in the queue.
bool WaitPainting(HANDLE handle, DWORD milliseconds);

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
