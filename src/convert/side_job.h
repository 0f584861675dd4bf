// Work that another thread does meanwhile.
#pragma once

#include <windows.h>

#include <atomic>
#include <functional>

namespace tessary {

// Runs a function on a thread of the system's own, or at its end on this one when no thread has
// come to it. No message boxes of the system appear for it. What it throws is lost.
class SideJob {
  public:
    explicit SideJob(std::function<void()> work);
    SideJob(const SideJob&) = delete;
    SideJob& operator=(const SideJob&) = delete;
    // Waits until the function has returned.
    ~SideJob();

  private:
    static void CALLBACK Run(PTP_CALLBACK_INSTANCE, void* job, PTP_WORK);

    std::function<void()> work_;
    std::atomic<bool> hasBegun_ = false;
    PTP_WORK pooled_;
};

}  // namespace tessary
