// Keeping the system's own message boxes away.
#pragma once

#include <windows.h>

namespace tessary {

// For its own life none appears for this thread, about a drive without a disk for instance: nobody
// may be there to see one.
class NoSystemMessages {
  public:
    NoSystemMessages() {
        SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &former_);
    }
    NoSystemMessages(const NoSystemMessages&) = delete;
    NoSystemMessages& operator=(const NoSystemMessages&) = delete;
    ~NoSystemMessages() { SetThreadErrorMode(former_, nullptr); }

  private:
    DWORD former_ = 0;
};

}  // namespace tessary
