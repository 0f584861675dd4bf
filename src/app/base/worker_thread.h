// A thread for calls into the system that may block for long.
#pragma once

#include <windows.h>

#include <functional>

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
    bool HasEnded() const { return HasEndedWithin(0); }
    // Waits until the work has ended or the time is over.
    bool HasEndedWithin(DWORD milliseconds) const {
        return WaitForSingleObject(Handle(), milliseconds) == WAIT_OBJECT_0;
    }

    // Breaks off the file operation that the work waits for, if there is one: it then fails.
    void CancelCall() const;

  private:
    UniqueThread thread_;
};

}  // namespace tessary
