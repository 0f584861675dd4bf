// Keeps other running copies of the program from changing what is remembered.
#pragma once

#include <windows.h>

#include "app/base/handles.h"
#include "app/base/shared_mutex.h"

namespace tessary {

// For its own life no other copy changes what is remembered: what one has switched off, another
// that has just asked must not write. A copy that hangs is not waited for.
class MemoryLock {
  public:
    MemoryLock() : mutex_(SharedMutex(LR"(Global\Tessary_Viewer_memory)")) {
        if (mutex_) WaitForSingleObject(mutex_.Get(), kLongestWait);
    }
    MemoryLock(const MemoryLock&) = delete;
    MemoryLock& operator=(const MemoryLock&) = delete;
    ~MemoryLock() {
        if (mutex_) ReleaseMutex(mutex_.Get());
    }

  private:
    static constexpr DWORD kLongestWait = 2000;  // milliseconds

    UniqueMutex mutex_;
};

}  // namespace tessary
