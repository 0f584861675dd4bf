#include "host/host_patience.h"

#include <algorithm>
#include <utility>

namespace tessary {
namespace {

constexpr DWORD kStopGrace = 300;  // that a plug-in may take to stop
constexpr DWORD kRest = 2000;      // who does nothing for so long waits for something

// Limits that pass until an unanswered question has been answered no, and until listing is given
// up that plainly goes on: it has no progress call.
constexpr DWORD kAskingLimits = 2;
constexpr DWORD kListingLimits = 6;

uint64_t Number(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// Times a number of limits, which the user may have set to anything.
DWORD Times(DWORD limit, DWORD count) {
    return static_cast<DWORD>(std::min<uint64_t>(uint64_t{limit} * count, INFINITE - 1));
}

}  // namespace

uint64_t ProcessActivity::Work() const {
    FILETIME begin{};
    FILETIME end{};
    FILETIME kernel{};
    FILETIME user{};
    uint64_t work = 0;
    if (GetProcessTimes(process_, &begin, &end, &kernel, &user))
        work += Number(kernel) + Number(user);
    if (GetThreadTimes(thread_, &begin, &end, &kernel, &user))
        work += Number(kernel) + Number(user);
    IO_COUNTERS files{};
    if (GetProcessIoCounters(process_, &files))
        work += files.ReadOperationCount + files.WriteOperationCount + files.OtherOperationCount;
    return work;
}

bool ProcessActivity::HasMoved() {
    const uint64_t work = Work();
    const bool hasMoved = last_ != work;
    last_ = work;
    return hasMoved;
}

DWORD HostPatience::Slice(DWORD most) const {
    if (isStopped_) return std::min(most, kStopGrace - std::min(stopping_, kStopGrace));
    return limit_ == INFINITE || IsOverdue() ? most : std::min(most, limit_ - silence_);
}

void HostPatience::Waited(DWORD milliseconds) {
    age_ += milliseconds;
    silence_ += milliseconds;
    idle_ = activity_.HasMoved() ? 0 : idle_ + milliseconds;
    if (isStopped_) stopping_ += milliseconds;
}

void HostPatience::Tells() {
    if (!isStopped_) silence_ = 0;
}

void HostPatience::Take(CallWish wish) {
    isAsking_ = wish == CallWish::kAsksUser;
    isGivenUp_ = wish == CallWish::kGivenUp;
    if (wish == CallWish::kMoreTime) silence_ = 0;
    if (wish == CallWish::kStops && !std::exchange(isStopped_, true)) isStoppedLate_ = IsOverdue();
}

WaitedCall HostPatience::Call() const {
    return {.age = age_,
            .silence = silence_,
            .idle = idle_,
            .mayTell = operation_ == HostOperation::kDecode ||
                       operation_ == HostOperation::kFrame || operation_ == HostOperation::kExtract,
            .isOverdue = IsOverdue()};
}

// Who was told to stop only when it was overdue is none the better for it.
HostPatience::End HostPatience::Spent() const {
    if (isGivenUp_) return End::kSilent;
    if (isStopped_) {
        if (stopping_ < kStopGrace) return End::kNone;
        return isStoppedLate_ ? End::kSilent : End::kStopped;
    }
    if (!IsOverdue()) return End::kNone;
    const bool isListing = operation_ == HostOperation::kList && idle_ < kRest;
    const DWORD limits = isListing ? kListingLimits : isAsking_ ? kAskingLimits : 1;
    return silence_ >= Times(limit_, limits) ? End::kSilent : End::kNone;
}

}  // namespace tessary
