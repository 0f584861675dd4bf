// Waiting for a moment more exactly than window timers do.
#pragma once

#include "app/base/worker_thread.h"
#include "picture/frames/frame_clock.h"

namespace tessary {

// One thread waits; any thread wakes it. Exact to about a millisecond; before Windows 10 to a tick
// of the system, of up to 16.
class DueTimer {
  public:
    DueTimer();

    // Until the moment, or until somebody wakes.
    void WaitUntil(FrameTime moment);
    // Until somebody wakes.
    void Wait() { WaitForSingleObject(wake_.Get(), INFINITE); }
    // Ends the wait under way, or the next one.
    void Wake() const { SetEvent(wake_.Get()); }

  private:
    UniqueEvent wake_;
    UniqueEvent timer_;
};

}  // namespace tessary
