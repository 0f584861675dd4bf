#include "helpers/dcpng/strip_team.h"

#include <algorithm>
#include <utility>

namespace tessary::dcpng {
namespace {

constexpr size_t kMostThreads = 16;  // about 2 MB of memory each
constexpr size_t kSlotsPerThread = 2;

}  // namespace

StripTeam::StripTeam(size_t strips, std::function<Make()> newMake)
    : strips_(strips), newMake_(std::move(newMake)) {
    const size_t processors =
        strips_ < 2 ? 1 : std::clamp<size_t>(std::thread::hardware_concurrency(), 1, kMostThreads);
    const size_t wanted = std::min(processors, strips_);
    slots_.resize(std::min(wanted * kSlotsPerThread, strips_));
    threads_.reserve(wanted);
    try {
        while (threads_.size() + 1 < wanted)
            threads_.emplace_back([this] { Work(); });
    } catch (const std::exception&) {
        // Fewer of them do the same work.
    }
}

StripTeam::~StripTeam() {
    const Lock lock(mutex_);
    stops_ = true;
    changed_.notify_all();
}

void StripTeam::Work() noexcept {
    Lock lock(mutex_);
    try {
        lock.unlock();
        const Make make = newMake_();
        lock.lock();
        for (;;) {
            changed_.wait(lock, [this] { return stops_ || begun_ == strips_ || CanBegin(); });
            if (stops_ || begun_ == strips_) return;
            MakeNext(make, lock);
        }
    } catch (...) {
        if (!lock.owns_lock()) lock.lock();
        failure_ = std::current_exception();
        changed_.notify_all();
    }
}

void StripTeam::MakeNext(const Make& make, Lock& lock) {
    const size_t strip = begun_++;
    Slot& slot = slots_[strip % slots_.size()];
    lock.unlock();
    make(strip, slot.strip);
    lock.lock();
    slot.isReady = true;
    changed_.notify_all();
}

const DeflatedStrip& StripTeam::Take() {
    Lock lock(mutex_);
    if (freed_ != taken_) {
        slots_[freed_ % slots_.size()].isReady = false;
        ++freed_;
        changed_.notify_all();
    }
    const Slot& slot = slots_[taken_ % slots_.size()];
    while (!slot.isReady) {
        if (failure_) std::rethrow_exception(failure_);
        if (!CanBegin()) {
            changed_.wait(lock);
            continue;
        }
        if (!ownMake_) ownMake_ = newMake_();
        MakeNext(ownMake_, lock);
    }
    ++taken_;
    return slot.strip;
}

}  // namespace tessary::dcpng
