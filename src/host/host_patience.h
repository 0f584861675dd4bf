// How long a host is waited for.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "host/host_messages.h"
#include "plugin/waited_call.h"

namespace tessary {

// Whether a process does anything at all: computes, reads or writes.
class ProcessActivity {
  public:
    // Of its first thread too, which some systems count better. The handles stay the caller's.
    ProcessActivity(HANDLE process, HANDLE thread) : process_(process), thread_(thread) {}

    // Whether it has done something since this was asked last; true the first time.
    bool HasMoved();

  private:
    uint64_t Work() const;

    HANDLE process_;
    HANDLE thread_;
    std::optional<uint64_t> last_;
};

// One call. What counts is the time that was really waited.
class HostPatience {
  public:
    enum class End { kNone, kSilent, kStopped };

    // `limit`: that it may give no sign of life, in milliseconds; INFINITE: the user is waited for.
    HostPatience(HostOperation operation, DWORD limit, ProcessActivity activity)
        : operation_(operation), limit_(limit), activity_(activity) {}

    // How long to wait until the next look, at most `most`.
    DWORD Slice(DWORD most) const;
    void Waited(DWORD milliseconds);
    // The plug-in has told how far it is. Who was told to stop wins no time by it.
    void Tells();
    // What whoever waits makes of it.
    void Take(CallWish wish);

    // For whoever waits: all but plug-in and progress.
    WaitedCall Call() const;
    bool IsStopped() const { return isStopped_; }
    // For how long nothing at all was done, in milliseconds.
    DWORD Idle() const { return idle_; }
    // Whether it is to be ended now, and as what.
    End Spent() const;

  private:
    bool IsOverdue() const { return limit_ != INFINITE && silence_ >= limit_; }

    HostOperation operation_;
    DWORD limit_;
    ProcessActivity activity_;
    DWORD age_ = 0;
    DWORD silence_ = 0;
    DWORD idle_ = 0;
    DWORD stopping_ = 0;  // since it was told to stop
    bool isStopped_ = false;
    bool isStoppedLate_ = false;  // it was overdue by then
    bool isAsking_ = false;
    bool isGivenUp_ = false;
};

}  // namespace tessary
